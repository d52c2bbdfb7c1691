#pragma once

// The format of the plug-in's own file "/options.ini".
//
// The file is INI text as QSettings::IniFormat writes it, but it is read
// without ever decoding a serialised value: QSettings' own INI reader turns
// "@Variant(...)", "@ByteArray(...)", "@DateTime(...)", "@Rect(...)" and the
// like into values, the first ones through QDataStream, after unescaping them
// (so "@Var\x69ant(" is one too), and a damaged one can make Qt allocate
// without limit or crash. Here every value stays the text it stands for:
//
//  - sections, keys, comments, quotes, escapes (\n, \x41, \101, ...) and
//    continued lines are read as Qt reads them; a key is named as QSettings
//    names it (no empty part around a slash), and an empty one is dropped;
//  - a value that Qt would read as a list (commas outside quotes) is its
//    items joined by ", ";
//  - "@@text" is "@text" and "@String(text)" is "text", as with Qt; any other
//    value that begins with "@" is kept as it stands, and no number, bool or
//    name is ever spelt that way, so it falls back like any malformed value;
//  - nothing in the file makes the reader fail: whatever can be read is.
//
// Writing gives the same bytes as QSettings::IniFormat for the values the
// plug-in stores (numbers, bools and text, a port name among them), with the
// sections and keys sorted by name (QSettings keeps the order of the sections
// as they were read; the plug-in's own files are sorted already). A value of
// any other type is written as its text, never serialised.

#include <QSettings>

class QIODevice;

namespace dialix {

// The format registered with QSettings (once, on first use).
QSettings::Format optionsFileFormat();

// The format's read and write functions.
bool readOptionsFile(QIODevice &device, QSettings::SettingsMap &map);
bool writeOptionsFile(QIODevice &device, const QSettings::SettingsMap &map);

} // namespace dialix
