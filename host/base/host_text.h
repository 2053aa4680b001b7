// How the host says something to a person: Host::tr("\n指定第一点: ").
//
// The source text is what the console prints. The window loads a translation into its own language.
#pragma once

#include <QCoreApplication>

/// The context of the host's texts in the translations.
struct Host {
    Q_DECLARE_TR_FUNCTIONS(Host)
};
