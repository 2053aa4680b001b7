// The module's reactors: created at start-up, deleted at unload, each in a fixed order.
#pragma once

/// The document registry with its document reactor; the current document is attached.
void createDocumentRegistry();
/// The remaining reactors; needs the registry.
void createReactors();
/// All of them, registry included.
void deleteReactors();
