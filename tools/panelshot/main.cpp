// Renders one panel's options page and saves it as a PNG.
//
//   dialix-panelshot [--locale de] [--sample] <output.png>
//
// --sample puts a few function assignments on the key and dial buttons (short
// label as text, full label as tool tip), the way the controller shows them.

#include "plugins/panels/dialix/source/dialixoptions.h"
#include "plugins/panels/dialix/source/dialixtranslation.h"
#include "plugins/panels/dialix/source/functiontable.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QPixmap>
#include <QPushButton>
#include <QTimer>

#include <cstdio>

namespace {

void assignSample(DialixOptions &page)
{
    using dialix::ButtonFunction;
    using dialix::DialFunction;
    const ButtonFunction keys[17] = {ButtonFunction::BandUp,
                                     ButtonFunction::BandDown,
                                     ButtonFunction::ModeUp,
                                     ButtonFunction::ModeDown,
                                     ButtonFunction::Mute,
                                     ButtonFunction::FilterUp,
                                     ButtonFunction::FilterDown,
                                     ButtonFunction::AgcUp,
                                     ButtonFunction::AgcDown,
                                     ButtonFunction::Mox,
                                     ButtonFunction::ChangeVfoAB,
                                     ButtonFunction::Split,
                                     ButtonFunction::SwitchReceiver,
                                     ButtonFunction::Unused,
                                     ButtonFunction::Nr,
                                     ButtonFunction::ListenRx1Only,
                                     ButtonFunction::RitReset};
    for (int n = 1; n <= 17; ++n) {
        auto *button = page.findChild<QPushButton *>(QStringLiteral("pbFunc%1").arg(n));
        const int id = int(keys[n - 1]);
        button->setText(dialix::buttonFunctionShortText(id));
        button->setToolTip(dialix::buttonFunctionText(id));
    }
    const DialFunction dials[4] = {DialFunction::Unused, DialFunction::Volume,
                                   DialFunction::FilterWidth, DialFunction::RitOffset};
    for (int j = 0; j <= 3; ++j) {
        auto *button = page.findChild<QPushButton *>(QStringLiteral("pbDial%1").arg(j));
        const int id = int(dials[j]);
        button->setText(dialix::dialFunctionShortText(id));
        button->setToolTip(dialix::dialFunctionText(id));
    }
    page.setReceiverNames({QStringLiteral("RX 1"), QStringLiteral("RX 2")});
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Renders the Dialix options page to a PNG."));
    parser.addHelpOption();
    const QCommandLineOption locale(QStringLiteral("locale"),
                                    QStringLiteral("Translate the page for <locale>."),
                                    QStringLiteral("locale"));
    const QCommandLineOption sample(QStringLiteral("sample"),
                                    QStringLiteral("Show sample function assignments."));
    parser.addOption(locale);
    parser.addOption(sample);
    parser.addPositionalArgument(QStringLiteral("output"), QStringLiteral("The PNG to write."));
    parser.process(app);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);
    const QString output = parser.positionalArguments().constFirst();

    if (parser.isSet(locale) && !installDialixTranslator(QLocale(parser.value(locale))))
        std::fprintf(stderr, "no translation for %s, rendering in English\n",
                     qPrintable(parser.value(locale)));

    DialixOptions page;
    if (parser.isSet(sample))
        assignSample(page);
    page.show();

    int result = 1;
    // Give the window system a moment to map and paint the window.
    QTimer::singleShot(500, &app, [&] {
        const QPixmap picture = page.grab();
        if (picture.save(output, "PNG")) {
            std::printf("%s: %dx%d\n", qPrintable(output), picture.width(), picture.height());
            result = 0;
        } else {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(output));
        }
        app.quit();
    });
    app.exec();
    return result;
}
