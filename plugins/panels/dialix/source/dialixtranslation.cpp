// Installing the plug-in's embedded translations.

#include "plugins/panels/dialix/source/dialixtranslation.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTranslator>

// The translations live in a static library: referencing the resource's
// initialiser keeps it from being dropped by the linker.
static void initTranslationResource()
{
    Q_INIT_RESOURCE(dialix_translations);
}

namespace {
QPointer<QTranslator> installed;
} // namespace

bool installDialixTranslator(const QLocale &locale)
{
    QCoreApplication *app = QCoreApplication::instance();
    if (!app)
        return false;
    initTranslationResource();

    removeDialixTranslator();
    auto *translator = new QTranslator(app);
    if (!translator->load(locale, QStringLiteral("dialix"), QStringLiteral("_"),
                          QStringLiteral(":/dialix/translations"))) {
        delete translator;
        return false;
    }
    QCoreApplication::installTranslator(translator);
    installed = translator;
    return true;
}

void removeDialixTranslator()
{
    if (!installed)
        return;
    QCoreApplication::removeTranslator(installed);
    delete installed;
}
