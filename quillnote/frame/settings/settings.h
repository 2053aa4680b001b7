// The settings of the review module: short readers and writers, and the table of every value.
//
// Values are read at the moment of use, except the start-up copies (start_up_settings.h). No call
// fails: a value that is missing or of the other type reads as 0 or empty, and callers check ranges.
#pragma once

#include <QString>

#include <span>

namespace settings
{

inline constexpr QStringView kKey = u"Software\\Quillnote3";
inline constexpr QStringView kTemplateKey = u"Software\\Quillnote3\\Templete";

/// The stored 32 bits taken as signed: 0xFFFFFFFF reads as -1.
int number(QStringView name, QStringView key = kKey);
/// The number when it lies in low..high, else `otherwise`.
int numberInRange(QStringView name, int low, int high, int otherwise);
/// A text longer than 4095 characters reads as empty.
QString text(QStringView name, QStringView key = kKey);

/// False when nothing was stored.
bool setNumber(QStringView name, int value, QStringView key = kKey);
bool setText(QStringView name, QStringView value, QStringView key = kKey);

enum class Kind { number, text };

/// One value, or a numbered row of values.
struct Value {
    QStringView key;
    QStringView name; ///< A name with "%d" stands for the numbers first..last.
    Kind kind;
    QStringView defaultValue; ///< What a reader takes when nothing valid is stored; empty for an empty text.
    QStringView meaning;
    int first = 0;
    int last = 0;
};

/// Tells the user's store the types of all values of the table.
void declareTypes();

/// Every value that the module reads or writes, in the order in which a listing shows them.
std::span<const Value> table();

} // namespace settings
