// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ServiceTextBrowser.h"

#include <QDesktopServices>
#include <QPixmap>
#include <QScrollBar>
#include <QStyle>
#include <QTextOption>

namespace {

void openWebPage(const QUrl& url)
{
    if (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"))
        QDesktopServices::openUrl(url);
}

// Whether there is a word in the text that no screen could hold. What stands in a tag is no word.
bool hasEndlessWord(const QString& text)
{
    constexpr int endless = 1000;
    const bool isRich = Qt::mightBeRichText(text);
    bool inTag = false;
    int length = 0;
    for (const QChar character : text) {
        if (isRich && (character == QLatin1Char('<') || character == QLatin1Char('>')))
            inTag = character == QLatin1Char('<');
        length = inTag || character.isSpace() ? 0 : length + 1;
        if (length > endless)
            return true;
    }
    return false;
}

} // namespace

ServiceTextBrowser::ServiceTextBrowser(QWidget* parent)
    : QTextBrowser(parent)
{
    // Left to itself the browser would go to a link that is not an external one, and be empty.
    setOpenLinks(false);
    connect(this, &QTextBrowser::anchorClicked, this, &openWebPage);
    // A bar that is always there has no handle while there is nothing to scroll.
    QScrollBar* const bar = verticalScrollBar();
    bar->setEnabled(false);
    connect(bar, &QScrollBar::rangeChanged, bar,
            [bar](int minimum, int maximum) { bar->setEnabled(maximum > minimum); });
}

void ServiceTextBrowser::setText(const QString& text)
{
    // To look for a place between words costs the square of the length of a word, also when the
    // text that is there is arranged once more for the new mode.
    clear();
    setWordWrapMode(hasEndlessWord(text) ? QTextOption::WrapAnywhere
                                         : QTextOption::WrapAtWordBoundaryOrAnywhere);
    QTextBrowser::setText(text);
}

QVariant ServiceTextBrowser::loadResource(int type, const QUrl& name)
{
    // For a picture that is not given here the document looks on the disk itself; one that is
    // part of its address it reads from there.
    if (type == QTextDocument::ImageResource && name.scheme() != QLatin1String("data"))
        return style()->standardPixmap(QStyle::SP_FileIcon, nullptr, this);
    return {};
}
