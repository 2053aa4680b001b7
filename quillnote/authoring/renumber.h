// Numbers of marks: all of them anew, or one by hand.
#pragma once

class AcDbDatabase;

/// Command: renumbers all marks after the full word "YES".
void QN3_reNumber();
/// Command: asks for the new number of one mark, and for its password when it has one.
void QN8_editNumber();

/// Numbers all marks from 1 without gaps: grouped by reviewer in the order in which the reviewers appear,
/// each group in the collector's order; letter case does not tell reviewers apart. Marks whose reviewer is
/// none of the collector's come last, as one group. The drawing's last number follows. Marks that cannot be
/// written to keep their number, with a printed line.
void renumberMarks(AcDbDatabase &database);
