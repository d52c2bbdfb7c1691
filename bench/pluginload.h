#pragma once

// Loading the plug-in into a benchmark, as the host loads it.

#include "interfaces/dialixabstract.h"

#include <QLayout>
#include <QPluginLoader>

#include <cstdio>

namespace measure {

// Loads the plug-in `loader` names and gives it `layout` for its tabs. Null,
// after saying why on stderr, when it does not load.
inline DialixAbstract *loadPlugin(QPluginLoader &loader, QLayout *layout)
{
    auto *plugin = qobject_cast<DialixAbstract *>(loader.instance());
    if (!plugin) {
        std::fprintf(stderr, "cannot load the plug-in: %s\n", qPrintable(loader.errorString()));
        return nullptr;
    }
    plugin->addWidget(layout);
    return plugin;
}

} // namespace measure
