#pragma once

// AssignmentStore: one panel's key and dial functions and options page in a
// settings object.

#include <QString>

#include <array>

class DialixOptions;
class QSettings;

namespace dialix {

// The function id of each function key and dial (0, "Unused", when none).
struct Assignments
{
    static constexpr int KeyCount = 17; // keys 1 .. 17, pbFunc1 .. pbFunc17
    static constexpr int DialCount = 4; // dials 0 .. 3, pbDial0 .. pbDial3
    std::array<int, KeyCount> keys {}; // key n at keys[n - 1]
    std::array<int, DialCount> dials {};
};

} // namespace dialix

// Reads and writes the assignments and the options page of panel `number`
// (0-based) in the group "Dialix" + (number + 1) of a settings object: key n
// under "FunctionButton" + (n - 1), dial j under "FunctionDial" + (j - 1) in the
// plug-in's own file and under "FunctionDial" + j in the host's settings, the
// page's keys under "Options/" as the page writes them for that layout.
//
// Reading gives "Unused" for a position that is missing, not a number or not a
// function id. It never throws: a value that the settings object cannot decode
// ends the reading there; what was read before stays, the rest keeps the value
// it had, and the settings object is left in the group it was in.
class AssignmentStore
{
public:
    enum Layout { OwnFile, HostSettings };

    AssignmentStore(QSettings &settings, Layout layout);

    void write(int number, const dialix::Assignments &assignments, DialixOptions &page);
    void read(int number, dialix::Assignments &assignments, DialixOptions &page);

    static QString groupName(int number);

private:
    QString dialKey(int j) const;

    QSettings &settings;
    const Layout layout;
};
