// The controller's function assignments: the menus of the keys and dials, the
// function each one has, and their storage in the own file and the host's settings.

#include "plugins/panels/dialix/source/dialixcontrol.h"

#include "interfaces/dialixlogging.h"
#include "plugins/panels/dialix/source/dialixoptions.h"
#include "plugins/panels/dialix/source/optionsfile.h"

#include <QAction>
#include <QActionGroup>
#include <QCoreApplication>
#include <QMenu>
#include <QPushButton>
#include <QSettings>

using dialix::SubMenu;

// The function menus are top-level widgets without a parent; the controller
// keeps them in its lists and deletes them. Their actions belong to the menus,
// their exclusive groups to the controller.
void DialixControl::buildButtonMenus()
{
    for (int k = 1; k <= ButtonCount; ++k) {
        auto *menu = new QMenu();
        for (int id = 0; id < dialix::ButtonFunctionCount; ++id)
            menu->addAction(dialix::buttonFunctionText(id));
        const QList<QAction *> actions = menu->actions();

        audioMenu = new QMenu(dialix::subMenuText(SubMenu::Audio), menu);
        dspMenu = new QMenu(dialix::subMenuText(SubMenu::Dsp), menu);
        mainMenu = new QMenu(dialix::subMenuText(SubMenu::Main), menu);
        vfoRx2Menu = new QMenu(dialix::subMenuText(SubMenu::VfoRx2), menu);
        const auto fill = [&actions](QMenu *subMenu, SubMenu which) {
            for (int id : dialix::subMenuFunctions(which))
                subMenu->addAction(actions.at(id));
        };
        fill(audioMenu, SubMenu::Audio);
        fill(dspMenu, SubMenu::Dsp);
        fill(mainMenu, SubMenu::Main);
        fill(vfoRx2Menu, SubMenu::VfoRx2);

        auto *group = new QActionGroup(this);
        for (QAction *action : actions) {
            action->setCheckable(true);
            group->addAction(action);
        }
        actions.first()->setChecked(true);
        connect(group, &QActionGroup::triggered, this, &DialixControl::changedFunctionButton);
        buttonMenus.append(menu);
        buttonGroups.append(group);

        auto *button = options->findChild<QPushButton *>(QStringLiteral("pbFunc%1").arg(k));
        funcButtons.append(button);
        if (button) {
            button->setMenu(menu);
            button->setToolTip(dialix::buttonFunctionText(0));
        }

        for (int i = 1; i < actions.size(); ++i)
            menu->removeAction(actions.at(i));
        for (QMenu *subMenu : {mainMenu, vfoRx2Menu, audioMenu, dspMenu})
            menu->addMenu(subMenu);
    }
}

void DialixControl::buildDialMenus()
{
    for (int j = 0; j < DialCount; ++j) {
        auto *menu = new QMenu();
        auto *group = new QActionGroup(this);
        for (int id = 0; id < dialix::DialFunctionCount; ++id) {
            QAction *action = menu->addAction(dialix::dialFunctionText(id));
            action->setCheckable(true);
            group->addAction(action);
        }
        group->actions().first()->setChecked(true);
        connect(group, &QActionGroup::triggered, this, &DialixControl::changedFunctionDial);
        dialMenus.append(menu);
        dialGroups.append(group);

        auto *button = options->findChild<QPushButton *>(QStringLiteral("pbDial%1").arg(j));
        dialButtons.append(button);
        if (button) {
            button->setMenu(menu);
            button->setToolTip(dialix::dialFunctionText(0));
            // Dial 0 is the VFO encoder: it has no assignable function.
            button->setVisible(j != 0);
        }
    }
}

// ---------------------------------------------------------------------------
// Storage

void DialixControl::saveSettings(QSettings *settings)
{
    if (settings)
        writeAssignments(*settings);
}

void DialixControl::readSettings(QSettings *settings)
{
    if (settings)
        readAssignments(*settings);
}

void DialixControl::saveExtraSettings(QSettings *settings)
{
    if (settings)
        writeHostAssignments(*settings);
}

void DialixControl::readExtraSettings(QSettings *settings)
{
    if (settings)
        readHostAssignments(*settings);
}

// ---------------------------------------------------------------------------
// Functions of the keys and dials

int DialixControl::checkedPosition(const QActionGroup *group)
{
    if (!group)
        return -1;
    const QAction *checked = group->checkedAction();
    return checked ? group->actions().indexOf(const_cast<QAction *>(checked)) : -1;
}

void DialixControl::checkPosition(QActionGroup *group, int position)
{
    const QList<QAction *> actions = group->actions();
    if (position < 0 || position >= actions.size())
        position = 0;
    actions.at(position)->setChecked(true);
}

int DialixControl::buttonFunction(int n) const
{
    return checkedPosition(buttonGroups.value(n - 1));
}

int DialixControl::dialFunction(int j) const
{
    return checkedPosition(dialGroups.value(j));
}

bool DialixControl::assignButtonFunction(int n, int id)
{
    QActionGroup *group = buttonGroups.value(n - 1);
    if (!group || !dialix::isButtonFunction(id))
        return false;
    QAction *action = group->actions().at(id);
    action->setChecked(true);
    emit group->triggered(action);
    return true;
}

bool DialixControl::assignDialFunction(int j, int id)
{
    QActionGroup *group = dialGroups.value(j);
    if (!group || !dialix::isDialFunction(id))
        return false;
    QAction *action = group->actions().at(id);
    action->setChecked(true);
    emit group->triggered(action);
    return true;
}

void DialixControl::changedFunctionButton(QAction *action)
{
    Q_UNUSED(action)
    auto *group = qobject_cast<QActionGroup *>(sender());
    const int k = buttonGroups.indexOf(group);
    if (k < 0)
        return;
    const int f = checkedPosition(group);
    if (QPushButton *button = funcButtons.value(k)) {
        button->setText(dialix::buttonFunctionShortText(f));
        button->setToolTip(dialix::buttonFunctionText(f));
    }
}

void DialixControl::changedFunctionDial(QAction *action)
{
    Q_UNUSED(action)
    auto *group = qobject_cast<QActionGroup *>(sender());
    const int k = dialGroups.indexOf(group);
    if (k < 0)
        return;
    const int f = checkedPosition(group);
    if (QPushButton *button = dialButtons.value(k)) {
        button->setText(dialix::dialFunctionShortText(f));
        button->setToolTip(dialix::dialFunctionText(f));
    }
}

QString DialixControl::optionsFilePath()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/options.ini");
}

// The own file is read with a format that never decodes a serialised value
// (see optionsfile.h): a damaged file loads what it can and falls back for the
// rest, and the next save writes it clean.
void DialixControl::saveOptions()
{
    QSettings settings(optionsFilePath(), dialix::optionsFileFormat());
    writeAssignments(settings);
    settings.sync();
    // Where the application's directory cannot be written (an installed host
    // on Linux), the file is not saved; the host's own settings still keep the
    // assignments. Said once, and once more if saving works again.
    static bool failing = false;
    if ((settings.status() == QSettings::AccessError) == failing)
        return;
    failing = !failing;
    if (failing)
        qCDebug(dialixLog, "%s: cannot write %s; the host's settings keep the assignments",
                Q_FUNC_INFO, qUtf8Printable(optionsFilePath()));
    else
        qCDebug(dialixLog, "%s: %s is written again", Q_FUNC_INFO,
                qUtf8Printable(optionsFilePath()));
}

void DialixControl::loadOptions()
{
    QSettings settings(optionsFilePath(), dialix::optionsFileFormat());
    readAssignments(settings);
}

void DialixControl::writeAssignments(QSettings &settings)
{
    store(settings, AssignmentStore::OwnFile);
}

void DialixControl::readAssignments(QSettings &settings)
{
    load(settings, AssignmentStore::OwnFile);
}

void DialixControl::writeHostAssignments(QSettings &settings)
{
    store(settings, AssignmentStore::HostSettings);
}

void DialixControl::readHostAssignments(QSettings &settings)
{
    load(settings, AssignmentStore::HostSettings);
}

dialix::Assignments DialixControl::assignments() const
{
    dialix::Assignments a;
    for (int n = 1; n <= ButtonCount; ++n)
        a.keys[n - 1] = buttonFunction(n);
    for (int j = 0; j < DialCount; ++j)
        a.dials[j] = dialFunction(j);
    return a;
}

void DialixControl::store(QSettings &settings, AssignmentStore::Layout layout)
{
    AssignmentStore(settings, layout).write(index, assignments(), *options);
}

// Only the own file's reading re-labels the page's buttons.
void DialixControl::load(QSettings &settings, AssignmentStore::Layout layout)
{
    dialix::Assignments a = assignments();
    AssignmentStore(settings, layout).read(index, a, *options);
    const auto restore = [layout](QActionGroup *group, int id) {
        checkPosition(group, id);
        if (layout == AssignmentStore::OwnFile)
            emit group->triggered(group->checkedAction());
    };
    for (int n = 0; n < ButtonCount; ++n)
        restore(buttonGroups.at(n), a.keys[n]);
    for (int j = 0; j < DialCount; ++j)
        restore(dialGroups.at(j), a.dials[j]);
}
