#ifndef DIALIX_DIALIXTRANSLATION_H
#define DIALIX_DIALIXTRANSLATION_H

#include <QLocale>

// Installs the plug-in's translations (embedded in the library) for `locale` on
// the running application. A second call replaces the translator of the first.
// Returns false when there is no application object or no translation for the
// locale; the texts then stay English.
bool installDialixTranslator(const QLocale &locale = QLocale::system());

#endif // DIALIX_DIALIXTRANSLATION_H
