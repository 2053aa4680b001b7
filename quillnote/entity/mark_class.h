// The run-time class of the review mark: how a drawing names it and what it says of its program.
#pragma once

#include "host/acrx/rxclass.h"

#include <QStringView>

inline constexpr char kMarkDxfName[] = "QUILLNOTE3";
inline constexpr QStringView kMarkClassName = u"QuillnoteObj3";

// What class records and messages say of the program's maker.
inline constexpr QStringView kProductName = u"Quillnote3";
inline constexpr QStringView kCompanyName = u"Quillnote";
inline constexpr QStringView kWebAddress = u"https://quillnote.example/";

/// The quoted text of a class record: class, product, company and web address.
QString applicationDescription(QStringView className);

/// A custom entity of the program becomes known to the host. `registered` is its class, null before the first
/// time; nothing happens when it is known. Ends the process with "Class mismatch" when another class has the
/// name.
void registerEntityClass(AcRxClass *&registered, QStringView name, const char *dxfName,
                         AcRxClass::Factory factory);
/// Entities of opened drawings become proxies; `registered` is null again.
void unregisterEntityClass(AcRxClass *&registered);

/// Makes marks known to the host; does nothing when they are. Ends the process with "Class mismatch" when
/// another class has the name.
void registerMarkClass();
/// Marks of opened drawings become proxies.
void unregisterMarkClass();
/// Null while marks are not registered.
AcRxClass *markClass();
