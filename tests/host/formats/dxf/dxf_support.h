// Small DXF drawings written in tests, and the few changes that tests make to them.
#pragma once

#include "host/acdb/dbsymtb.h"
#include "host/formats/dxf/dxfreader.h"
#include "host/formats/dxf/dxfwriter.h"

#include <gtest/gtest.h>

namespace tests
{

/// Lines "code value" parted by '|' become groups: "0 LINE|5 1F|8 0". The value keeps its blanks but the
/// first.
QByteArray dxfText(const QByteArray &groups, const QByteArray &lineEnd = "\r\n", int codeWidth = 3);
/// The same groups in binary form; numbers by their codes. `shortCodes` is R12's form.
QByteArray dxfBinary(const QByteArray &groups, bool shortCodes = false);

/// A small drawing of 2000 and later with every section: layers 0 and WALL, block DOOR with one line, a
/// circle in model space, an insert with one attribute, a text in paper space, one dictionary below the root.
QByteArray smallDrawing(const QByteArray &version = "AC1015");
/// The same things as R12 has them; `handles` or none at all.
QByteArray smallR12Drawing(bool handles);

/// Fails the running test when the bytes are refused.
std::unique_ptr<AcDbDatabase> openDxf(const QByteArray &bytes);
QByteArray saveDxf(AcDbDatabase &database);

/// Kinds and handles of all objects that are not erased, in file order: "LAYER 10 | CIRCLE 31".
QString objectList(const AcDbDatabase &database, bool withSynthetic = false);
/// "CIRCLE 31" of the entities in a block.
QString blockList(const AcDbDatabase &database, AcDbObjectId blockRecord);
AcDbObjectId object(const AcDbDatabase &database, std::uint64_t handle);
ResbufList groupsOf(const AcDbDatabase &database, std::uint64_t handle);

/// A new native entity of these groups at the end of the block; returns its id.
AcDbObjectId append(AcDbObjectId blockRecord, ResbufList groups);
AcDbObjectId appendCircle(AcDbObjectId blockRecord);
void setGroup(AcDbDatabase &database, std::uint64_t handle, int code, resbuf::Value value);
void erase(AcDbDatabase &database, std::uint64_t handle);

} // namespace tests
