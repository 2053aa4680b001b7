// The hot links of a drawing as a set.
#pragma once

#include "quillnote/aids/links/link_record.h"

#include <vector>

/// Of model space and the layouts.
std::vector<AcDbObjectId> linkIds(const AcDbDatabase &database);

/// -1 hides, 1 shows. Links that are so already are not written to. How many could not be written to.
int setLinksDisplayMode(const std::vector<AcDbObjectId> &links, std::int16_t mode);

/// Says how many links, `of` how many, could not be changed; a command that could change none of them is
/// refused.
void saySkippedLinks(int count, std::size_t of);

/// The link has changed, or has come or gone: the arc that its partner draws to it is drawn anew.
void redrawPartner(const QuillLinkObj &link);
