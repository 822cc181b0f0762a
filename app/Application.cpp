// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Application.h"

#include "app/WindowShapes.h"
#include "platform/DisplayScale.h"
#include "res/Resources.h"

#include <QIcon>
#include <QImageReader>
#include <QPixmap>
#include <QWidget>

namespace {

// Scaling can only be set before the base class starts up. The factor counts as it is: rounded, the
// fonts would outgrow the boxes that they stand in, or the task list a small screen.
int& withDisplayScaling(int& argc)
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    // Nothing here draws by OpenGL. Else Qt would load its driver with the first window, which
    // takes as much memory as half of the rest.
    QCoreApplication::setAttribute(Qt::AA_ForceRasterWidgets);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        platform::desktopTellsScale() ? Qt::HighDpiScaleFactorRoundingPolicy::PassThrough
                                      : Qt::HighDpiScaleFactorRoundingPolicy::RoundPreferFloor);
    return argc;
}

// What Qt would do by itself on some desktops, and what can only be forbidden beforehand as well.
int& withoutDesktopHabits(int& argc)
{
    // The theme of a desktop may bring a font, which takes the place of the program's own.
    QGuiApplication::setDesktopSettingsAware(false);
    // The dead "?" that Windows puts into the title bars of dialogs.
    QCoreApplication::setAttribute(Qt::AA_DisableWindowContextHelpButton);
    // A session that is about to end may yet be called off: the windows stay as they are, and what
    // is to be saved is saved when it does end.
    QGuiApplication::setFallbackSessionManagementEnabled(false);
    return argc;
}

/// Without the picture for starters, which every window would hand to the display, too.
QIcon programIcon()
{
    constexpr int largest = 64;
    QImageReader file(QStringLiteral(":/icons/64.ico"));
    QIcon icon;
    for (int i = 0; i < file.imageCount(); ++i) {
        file.jumpToImage(i);
        if (file.size().width() <= largest)
            icon.addPixmap(QPixmap::fromImageReader(&file));
    }
    return icon;
}

} // namespace

Application::Application(int& argc, char** argv)
    : QApplication(withDisplayScaling(withoutDesktopHabits(argc)), argv)
{
    initResources();
    installTranslation();
    installPalette();
    // Behind the style, which comes with the palette: a new style brings the system's fonts back
    // for menus, lists and tool tips.
    installFonts();
    installEventFilter(new WindowShapes(this));
    setWindowIcon(programIcon());
}

void Application::showMainForm()
{
    if (!m_mainForm)
        return;
    m_mainForm->show();
    m_mainForm->raise();
}
