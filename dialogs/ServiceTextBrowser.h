// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTextBrowser>

class TextPictures;

/// Shows a text of the service, as rich text where it looks like it. The text can't reach beyond
/// itself: no file and no address is read for it, and a place holder stands for each picture that
/// is not part of the text. A link to the web opens in the user's browser, any other does nothing.
class ServiceTextBrowser : public QTextBrowser {
    Q_OBJECT

public:
    explicit ServiceTextBrowser(QWidget* parent = nullptr);

    /// Whether it is one that a text may open: of the web.
    static bool isWebPage(const QUrl& url);

    /// A text of more than 100,000 characters beside its pictures is cut, and one whose markup
    /// would take too long to arrange is shown with its tags as they stand.
    void setText(const QString& text);

    QVariant loadResource(int type, const QUrl& name) override;

private:
    TextPictures* const m_pictures;
};
