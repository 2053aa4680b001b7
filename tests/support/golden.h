// Golden references: what a program writes is compared with a file that is kept under tests/.
//
// On a difference the actual bytes are kept in the build tree, under tests/out/, with ".out" behind the
// reference's name. References are written only when QUILL_UPDATE_GOLDEN=1 asks for it.
#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <QString>

namespace tests
{

/// Compares every byte with the reference, a path under tests/. The message shows the first line that
/// differs when both are text, otherwise the first bytes that differ and their offset.
testing::AssertionResult matchesGolden(const QByteArray &actual, const QString &reference);

/// The same comparison with bytes at hand.
testing::AssertionResult sameBytes(const QByteArray &actual, const QByteArray &expected);

} // namespace tests
