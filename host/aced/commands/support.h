// What the host's commands share: questions, coordinates, what they remember of a document.
#pragma once

#include "host/acap/docman.h"
#include "host/acdb/dbentity.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edselect.h"

#include <optional>

namespace hostcommands
{

/// Remembered between commands; forgotten with the document.
struct DocumentMemory {
    std::vector<std::size_t> undoMarks; ///< Undo positions.
    bool groupOpen = false;             ///< UNDO Begin without its End.
    std::vector<AcApUcs> earlierUcs;
    std::vector<AcDbObjectId> lastErased; ///< For OOPS.
    QString lastInserted;                 ///< Name of a block.

    static DocumentMemory &of(AcApDocument *document);
};

/// A line that no quotes surround; none when the command was cancelled.
std::optional<QString> askText(const QString &prompt);
struct AskedFile {
    QString path;            ///< Empty for Enter.
    bool mayReplace = false; ///< The user knows that there is such a file.
    QStringList further{};   ///< More files to open.
};
/// A path, typed or chosen in a window's file dialog, which begins with `proposed`; none when cancelled.
std::optional<AskedFile> askFile(AcEdPromptKind kind, const QString &message, const QString &proposed);
/// One of the keywords; `fallback` for Enter; none when cancelled.
std::optional<QString> askKeyword(const QString &keywords, const QString &prompt, const QString &fallback);
std::optional<bool> askYes(const QString &prompt, bool fallback);
/// UCS coordinates; none for anything else than a point.
std::optional<AcGePoint3d> askPoint(const AcGePoint3d *base, const QString &prompt);

AcGePoint3d toWorld(const AcGePoint3d &point);
AcGeVector3d toWorld(const AcGeVector3d &vector);
/// The current UCS's Z axis in world coordinates.
AcGeVector3d ucsNormal();

// Drawing ----------------------------------------------------------------------------------------------

/// Makes the entity with the current layer, colour and linetype in the current space; null when refused.
AcDbObjectId drawEntity(const QByteArray &dxfName, ResbufList ownGroups);
/// Plane figures carry coordinates of their own plane: that of the current UCS.
AcGePoint3d inPlane(const AcGePoint3d &ucsPoint);
/// The angle from the UCS's X axis in that plane, degrees.
double rotationInPlane(double angle);
/// The direction of that plane, unless it is the usual one.
void appendNormal(ResbufList &groups);

/// Asks for entities until Enter; empty when there are none.
AcEdSelectionSet askSelection();
/// Does `work` with very many entities in pieces; the user sees how far it has come. False: he stopped it,
/// and what it had changed is as it was.
bool inPieces(const AcEdSelectionSet &entities, const std::function<void(const AcEdSelectionSet &)> &work);

/// What a command could not change, and why.
class Refusals
{
public:
    void note(Acad::ErrorStatus status);
    /// A line for each reason; where nothing at all could be changed the command is refused.
    void report() const;

private:
    std::size_t m_done = 0;
    std::size_t m_locked = 0;
    std::size_t m_others = 0;
};
/// Transforms those that can be changed.
void transform(const AcEdSelectionSet &entities, const AcGeMatrix3d &matrix, Refusals &refused);
/// Transforms very many and says how many cannot be changed.
void transformAll(const AcEdSelectionSet &entities, const AcGeMatrix3d &matrix);
/// Takes out what may not be changed, and says how many that were.
void dropUnchangeable(AcEdSelectionSet &entities);
/// Why an entity was refused, for messages.
QString reasonText(Acad::ErrorStatus status);
/// Fills the last "%1" of a message with a reason. The console says what commands say in Chinese and reasons
/// in English: there the reason gets a line of its own.
QString withReason(QString message, const QString &reason);

/// A number for messages: "12.5".
QString numberText(double number);
/// "X = 1.0  Y = 2.0  Z = 0.0"
QString pointText(const AcGePoint3d &point);

} // namespace hostcommands
