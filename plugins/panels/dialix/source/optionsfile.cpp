// The options file's own QSettings format: INI text read without decoding
// serialised values, written as QSettings writes it.

#include "plugins/panels/dialix/source/optionsfile.h"

#include <QIODevice>
#include <QMap>
#include <QStringList>

namespace {

#ifdef Q_OS_WIN
const QByteArray LineEnd = QByteArrayLiteral("\r\n");
#else
const QByteArray LineEnd = QByteArrayLiteral("\n");
#endif

const char HexDigits[] = "0123456789ABCDEF";

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// The characters at which a line may end, be continued or change its meaning.
bool isSpecial(char c)
{
    return c == '=' || c == '\n' || c == '\r' || c == '\\' || c == '"' || c == ';';
}

bool isHexDigit(uint c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// ---------------------------------------------------------------------------
// Reading

struct Line
{
    int start = 0;
    int length = 0;
    int equals = -1; // position of the first '=' outside quotes, or -1
};

// Finds the next line from `pos` on: white space before it is skipped; a
// backslash takes the character after it along (so a backslash before a line
// break continues the line); quotes hold line breaks and semicolons; a line
// that starts with a semicolon is a comment and skipped, a semicolon elsewhere
// ends the line. False at the end of the data.
bool nextLine(const QByteArray &data, int &pos, Line &line)
{
    const int size = data.size();
    bool quoted = false;
    line.equals = -1;
    int start = pos;
    while (start < size && isSpace(data.at(start)))
        ++start;
    int i = start;
    while (i < size) {
        const char c = data.at(i++);
        if (!isSpecial(c))
            continue;
        if (c == '=') {
            if (!quoted && line.equals == -1)
                line.equals = i - 1;
        } else if (c == '\n' || c == '\r') {
            if (i == start + 1) {
                ++start;
            } else if (!quoted) {
                --i;
                break;
            }
        } else if (c == '\\') {
            if (i < size) {
                const char taken = data.at(i++);
                if (i < size) {
                    const char after = data.at(i);
                    if ((taken == '\n' && after == '\r') || (taken == '\r' && after == '\n'))
                        ++i;
                }
            }
        } else if (c == '"') {
            quoted = !quoted;
        } else if (i == start + 1) { // ';' opening a comment line
            while (i < size && data.at(i) != '\n' && data.at(i) != '\r')
                ++i;
            while (i < size && isSpace(data.at(i)))
                ++i;
            start = i;
        } else if (!quoted) { // ';' ending the line
            --i;
            break;
        }
    }
    pos = i;
    line.start = start;
    line.length = i - start;
    return line.length > 0;
}

// A section or key name: a backslash stands for '/', "%XX" and "%UXXXX" for
// the character with that hexadecimal code; everything else is Latin-1.
QString unescapeName(const QByteArray &data, int from, int to)
{
    QString name;
    name.reserve(to - from);
    int i = from;
    while (i < to) {
        const char c = data.at(i);
        if (c == '\\') {
            name += QLatin1Char('/');
            ++i;
            continue;
        }
        if (c != '%' || i == to - 1) {
            name += QLatin1Char(c);
            ++i;
            continue;
        }
        const bool wide = data.at(i + 1) == 'U';
        const int first = i + (wide ? 2 : 1);
        const int digits = wide ? 4 : 2;
        bool ok = false;
        const int code = first + digits <= to ? data.mid(first, digits).toInt(&ok, 16) : 0;
        if (!ok) {
            name += QLatin1Char('%');
            ++i;
            continue;
        }
        name += QChar(code);
        i = first + digits;
    }
    return name;
}

void chopTrailingSpaces(QString &text, int keep)
{
    int n = text.size();
    while (n > keep && (text.at(n - 1) == QLatin1Char(' ') || text.at(n - 1) == QLatin1Char('\t')))
        --n;
    text.truncate(n);
}

int escapedCharacter(char c)
{
    switch (c) {
    case 'a':
        return '\a';
    case 'b':
        return '\b';
    case 'f':
        return '\f';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    case 'v':
        return '\v';
    case '"':
    case '?':
    case '\'':
    case '\\':
        return c;
    default:
        return -1;
    }
}

// A value's text: quotes group, escapes (\n, \x41, \101, ...) stand for their
// character, a backslash before a line break joins the lines, white space
// around an unquoted item is dropped, and commas outside quotes separate items
// (joined again by ", "). Bytes are Latin-1, or UTF-8 after a byte-order mark.
QString unescapeValue(const QByteArray &data, int from, int to, bool utf8)
{
    enum class State { SkipSpaces, Normal, Hex, Octal };
    State state = State::SkipSpaces;
    QString text;
    QStringList items;
    bool isList = false;
    bool inQuotes = false;
    bool quoted = false; // the current item had quotes: its spaces stay
    int keep = 0; // trailing spaces up to here stay (they came from escapes)
    quint32 code = 0;
    int i = from;
    const auto enterNormal = [&] {
        state = State::Normal;
        keep = text.size();
    };
    for (;;) {
        if (state == State::SkipSpaces) {
            while (i < to && (data.at(i) == ' ' || data.at(i) == '\t'))
                ++i;
            enterNormal();
        } else if (state == State::Hex || state == State::Octal) {
            const int base = state == State::Hex ? 16 : 8;
            char c = i < to ? data.at(i) : '\0';
            if (base == 16 && c >= 'a')
                c = char(c - ('a' - 'A'));
            const int digit = (c >= '0' && c <= '9')   ? c - '0'
                : (base == 16 && c >= 'A' && c <= 'F') ? c - 'A' + 10
                                                       : -1;
            if (i < to && digit >= 0 && digit < base) {
                code = code * quint32(base) + quint32(digit);
                ++i;
                continue;
            }
            text += QChar(ushort(code));
            if (i >= to)
                break;
            enterNormal();
        } else if (i >= to) {
            if (!quoted)
                chopTrailingSpaces(text, keep);
            break;
        } else if (data.at(i) == '\\') {
            if (++i >= to)
                break;
            const char c = data.at(i++);
            const int plain = escapedCharacter(c);
            if (plain >= 0) {
                text += QLatin1Char(char(plain));
                enterNormal();
                continue;
            }
            if (c == 'x') {
                code = 0;
                if (i >= to)
                    break;
                if (isHexDigit(uchar(data.at(i)))) {
                    state = State::Hex;
                    continue;
                }
            } else if (c >= '0' && c <= '7') {
                code = quint32(c - '0');
                state = State::Octal;
                continue;
            } else if ((c == '\n' || c == '\r') && i < to) {
                const char after = data.at(i);
                if ((after == '\n' || after == '\r') && after != c)
                    ++i;
            }
            keep = text.size();
        } else if (data.at(i) == '"') {
            ++i;
            quoted = true;
            inQuotes = !inQuotes;
            if (!inQuotes)
                state = State::SkipSpaces;
        } else if (data.at(i) == ',' && !inQuotes) {
            if (!quoted)
                chopTrailingSpaces(text, keep);
            isList = true;
            items << text;
            text.clear();
            quoted = false;
            ++i;
            state = State::SkipSpaces;
        } else {
            int j = i + 1;
            while (j < to && data.at(j) != '\\' && data.at(j) != '"' && data.at(j) != ',')
                ++j;
            text += utf8 ? QString::fromUtf8(data.constData() + i, j - i)
                         : QString::fromLatin1(data.constData() + i, j - i);
            i = j;
        }
    }
    if (isList) {
        items << text;
        return items.join(QStringLiteral(", "));
    }
    return text;
}

// A key as QSettings names it: no empty parts between, before or after the
// slashes. Any other form could neither be asked for nor written back.
QString normalisedKey(const QString &key)
{
    return key.split(QLatin1Char('/'), Qt::SkipEmptyParts).join(QLatin1Char('/'));
}

// What QSettings makes of a value's text, short of decoding anything: "@@"
// stands for "@", "@String(...)" for its content; the rest stays as it is.
QString plainValue(QString text)
{
    if (text.startsWith(QLatin1String("@@")))
        text.remove(0, 1);
    else if (text.startsWith(QLatin1String("@String(")) && text.endsWith(QLatin1Char(')')))
        text = text.mid(8, text.size() - 9);
    return text;
}

// ---------------------------------------------------------------------------
// Writing

// A section or key name: letters, digits, '_', '-' and '.' as they are, '/' as
// a backslash, other characters as "%XX" or "%UXXXX".
QByteArray escapeName(const QString &name)
{
    QByteArray out;
    out.reserve(name.size());
    for (const QChar qc : name) {
        const ushort c = qc.unicode();
        if (c == '/') {
            out += '\\';
        } else if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')
                   || c == '_' || c == '-' || c == '.') {
            out += char(c);
        } else if (c <= 0xFF) {
            out += '%';
            out += HexDigits[c / 16];
            out += HexDigits[c % 16];
        } else {
            out += "%U";
            for (int shift = 12; shift >= 0; shift -= 4)
                out += HexDigits[(c >> shift) & 0xF];
        }
    }
    return out;
}

// A value's text: control characters, '"', '\\' and everything beyond ASCII
// as escapes, and the whole in quotes when it holds ';', ',' or '=' or begins
// or ends with a space.
QByteArray escapeValue(const QString &text)
{
    QByteArray out;
    out.reserve(text.size());
    bool needsQuotes = false;
    bool escapeNextIfHex = false; // "\x1" followed by "f" would read as "\x1f"
    for (const QChar qc : text) {
        const ushort c = qc.unicode();
        if (c == ';' || c == ',' || c == '=')
            needsQuotes = true;
        if (escapeNextIfHex && isHexDigit(c)) {
            out += "\\x" + QByteArray::number(c, 16);
            continue;
        }
        escapeNextIfHex = false;
        switch (c) {
        case '\0':
            out += "\\0";
            escapeNextIfHex = true;
            break;
        case '\a':
            out += "\\a";
            break;
        case '\b':
            out += "\\b";
            break;
        case '\f':
            out += "\\f";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\v':
            out += "\\v";
            break;
        case '"':
        case '\\':
            out += '\\';
            out += char(c);
            break;
        default:
            if (c <= 0x1F || c >= 0x7F) {
                out += "\\x" + QByteArray::number(c, 16);
                escapeNextIfHex = true;
            } else {
                out += char(c);
            }
        }
    }
    if (needsQuotes || (!out.isEmpty() && (out.startsWith(' ') || out.endsWith(' '))))
        out = '"' + out + '"';
    return out;
}

// The text a value is stored as: never a serialised form.
QString storedText(const QVariant &value)
{
    if (!value.isValid())
        return QStringLiteral("@Invalid()");
    QString text = value.toString();
    if (text.contains(QChar::Null))
        return QStringLiteral("@String(") + text + QLatin1Char(')');
    if (text.startsWith(QLatin1Char('@')))
        text.prepend(QLatin1Char('@'));
    return text;
}

} // namespace

namespace dialix {

QSettings::Format optionsFileFormat()
{
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("ini"), readOptionsFile, writeOptionsFile);
    return format;
}

bool readOptionsFile(QIODevice &device, QSettings::SettingsMap &map)
{
    const QByteArray data = device.readAll();
    const bool utf8 = data.startsWith("\xEF\xBB\xBF");
    // The keys of each section in the order of the file; QSettings takes the
    // sections in the order of their names, so that of two sections naming the
    // same key (as "[a/b]" and "[a]" with "b\\c") the later name wins.
    QMap<QString, QList<QPair<QString, QString>>> sections;
    QList<QPair<QString, QString>> *keys = &sections[QString()];
    QString section;
    Line line;
    // After a byte-order mark QSettings reads the text as UTF-8, and skips the
    // mark only when a section comes first: otherwise the mark begins the
    // first key's name.
    int pos = 3;
    if (!utf8 || !nextLine(data, pos, line) || data.at(line.start) != '[')
        pos = 0;
    else
        pos = 3;
    while (nextLine(data, pos, line)) {
        const int end = line.start + line.length;
        if (data.at(line.start) == '[') {
            // "[name]"; a section without its ']' runs to the end of the line.
            int close = line.start + 1;
            while (close < end && data.at(close) != ']')
                ++close;
            const QByteArray name = data.mid(line.start + 1, close - line.start - 1).trimmed();
            section.clear();
            // Compared over the whole name, as QSettings does: a NUL inside
            // it does not end the name.
            if (name.compare("%general", Qt::CaseInsensitive) == 0)
                section = QString::fromLatin1(name.mid(1)) + QLatin1Char('/');
            else if (name.compare("general", Qt::CaseInsensitive) != 0)
                section = unescapeName(name, 0, name.size()) + QLatin1Char('/');
            keys = &sections[section];
            continue;
        }
        if (line.equals < 0)
            continue; // not a key
        int keyEnd = line.equals;
        while (keyEnd > line.start && (data.at(keyEnd - 1) == ' ' || data.at(keyEnd - 1) == '\t'))
            --keyEnd;
        keys->append({section + unescapeName(data, line.start, keyEnd),
                      plainValue(unescapeValue(data, line.equals + 1, end, utf8))});
    }
    for (const auto &entries : qAsConst(sections)) {
        for (const auto &entry : entries) {
            const QString key = normalisedKey(entry.first);
            if (!key.isEmpty())
                map.insert(key, entry.second);
        }
    }
    return true; // whatever could be read is loaded
}

bool writeOptionsFile(QIODevice &device, const QSettings::SettingsMap &map)
{
    // Sections by name ("" first: the keys outside any group), keys by name.
    QMap<QString, QList<QPair<QString, QString>>> sections;
    for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
        const int slash = it.key().indexOf(QLatin1Char('/'));
        sections[slash < 0 ? QString() : it.key().left(slash)].append(
            {slash < 0 ? it.key() : it.key().mid(slash + 1), storedText(it.value())});
    }
    bool first = true;
    for (auto it = sections.constBegin(); it != sections.constEnd(); ++it) {
        QByteArray block = first ? QByteArray() : LineEnd;
        first = false;
        const QByteArray name = escapeName(it.key());
        if (name.isEmpty())
            block += "[General]";
        else if (name.compare("general", Qt::CaseInsensitive) == 0)
            block += "[%General]";
        else
            block += '[' + name + ']';
        block += LineEnd;
        for (const auto &entry : it.value())
            block += escapeName(entry.first) + '=' + escapeValue(entry.second) + LineEnd;
        if (device.write(block) != block.size())
            return false;
    }
    return true;
}

} // namespace dialix
