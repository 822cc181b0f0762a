// SPDX-License-Identifier: GPL-3.0-or-later
#include "res/Resources.h"

#include <QApplication>
#include <QDebug>
#include <QFontDatabase>

namespace {

constexpr int fontPixelSize = 12;

QString addFont(const QString& resource)
{
    const int id = QFontDatabase::addApplicationFont(resource);
    const QStringList families = QFontDatabase::applicationFontFamilies(id);
    if (families.isEmpty()) {
        qWarning() << "The font" << resource << "can't be loaded";
        return {};
    }
    return families.first();
}

} // namespace

void initResources()
{
    Q_INIT_RESOURCE(resources);
    Q_INIT_RESOURCE(fonts);
}

void installFonts()
{
    addFont(QStringLiteral(":/fonts/res/fonts/TAHOMABD.TTF"));
    const QString family = addFont(QStringLiteral(":/fonts/res/fonts/TAHOMA.TTF"));
    if (family.isEmpty())
        return;
    QFont font(family);
    font.setPixelSize(fontPixelSize);
    QApplication::setFont(font);
}
