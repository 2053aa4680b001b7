// The layer that marks and hot links are put on when the settings ask for one of their own.
#pragma once

#include <QString>

class AcDbDatabase;
class AcDbEntity;

/// The setting "LayerName"; "评图标签" when it is empty or 37 characters or longer.
QString markLayerName();

/// Makes the mark layer, or repairs it (thawed, on, unlocked, thawed in new viewports, not plotting when the
/// settings say so), and makes it current. Marks are made without it when the layer table refuses.
void ensureMarkLayer(AcDbDatabase &database);

/// A new entity on the mark layer when the settings ask for one, else on layer "0".
void putOnMarkLayer(AcDbDatabase &database, AcDbEntity &entity);
