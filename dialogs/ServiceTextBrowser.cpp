// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ServiceTextBrowser.h"

#include "TextPictures.h"
#include "dialogs/ShortText.h"

#include <QAbstractTextDocumentLayout>
#include <QDesktopServices>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextOption>

#include <algorithm>

namespace {

// What takes a moment that nobody notices. Above, the time grows with the square of the number of
// characters and tags, and doubles with each table within a table.
constexpr int longestText = 100000;
constexpr int mostTags = 3000;
constexpr int mostRules = 100;
constexpr int mostFloats = 50;
constexpr int deepestTable = 8;

// Whether there is a word in the text that no screen could hold. What stands in a tag is no word.
bool hasEndlessWord(const QString& text, bool isRich)
{
    constexpr int endless = 1000;
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

bool isArrangedInTime(const QString& richText)
{
    static const QRegularExpression tableTag(QStringLiteral("<(/?)table\\b"),
                                             QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression absurdSize(
        QStringLiteral("(padding|spacing|size|span)[\"'\\s:=]{1,4}\\d{4}"),
        QRegularExpression::CaseInsensitiveOption);
    if (richText.count(QLatin1Char('<')) > mostTags || richText.count(QLatin1Char('{')) > mostRules
        || richText.count(QLatin1String("float"), Qt::CaseInsensitive) > mostFloats
        || richText.contains(absurdSize))
        return false;
    int depth = 0;
    auto tags = tableTag.globalMatch(richText);
    while (tags.hasNext()) {
        depth = std::max(0, depth + (tags.next().capturedLength(1) == 0 ? 1 : -1));
        if (depth > deepestTable)
            return false;
    }
    return true;
}

} // namespace

ServiceTextBrowser::ServiceTextBrowser(QWidget* parent)
    : QTextBrowser(parent)
    , m_pictures(new TextPictures(this))
{
    document()->documentLayout()->registerHandler(QTextFormat::ImageObject, m_pictures);
    // Left to itself the browser would go to a link that is not an external one, and be empty.
    setOpenLinks(false);
    connect(this, &QTextBrowser::anchorClicked, this, [](const QUrl& url) {
        if (isWebPage(url))
            QDesktopServices::openUrl(url);
    });
    // A bar that is always there has no handle while there is nothing to scroll.
    QScrollBar* const bar = verticalScrollBar();
    bar->setEnabled(false);
    connect(bar, &QScrollBar::rangeChanged, bar,
            [bar](int minimum, int maximum) { bar->setEnabled(maximum > minimum); });
}

bool ServiceTextBrowser::isWebPage(const QUrl& url)
{
    return url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
}

void ServiceTextBrowser::setText(const QString& text)
{
    // To look for a place between words costs the square of the length of a word, also when the
    // text that is there is arranged once more for the new mode.
    clear();
    const QString richText =
        Qt::mightBeRichText(text) ? shortText(m_pictures->takeFrom(text), longestText) : QString();
    const bool isRich = !richText.isEmpty() && isArrangedInTime(richText);
    const QString shown = isRich ? richText : shortText(text, longestText);
    setWordWrapMode(hasEndlessWord(shown, isRich) ? QTextOption::WrapAnywhere
                                                  : QTextOption::WrapAtWordBoundaryOrAnywhere);
    if (isRich)
        setHtml(shown);
    else
        setPlainText(shown);
}

QVariant ServiceTextBrowser::loadResource(int type, const QUrl& name)
{
    // The picture behind a part of the text. Those between the words don't come by here.
    if (type == QTextDocument::ImageResource)
        return m_pictures->picture(name.toString(QUrl::FullyEncoded));
    // Not null, or the document would look for a style sheet on the disk itself.
    return QByteArray("");
}
