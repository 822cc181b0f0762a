// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ServiceTextBrowser.h"

#include <QDesktopServices>
#include <QPixmap>
#include <QStyle>

namespace {

void openWebPage(const QUrl& url)
{
    if (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"))
        QDesktopServices::openUrl(url);
}

} // namespace

ServiceTextBrowser::ServiceTextBrowser(QWidget* parent)
    : QTextBrowser(parent)
{
    // Left to itself the browser would go to a link that is not an external one, and be empty.
    setOpenLinks(false);
    connect(this, &QTextBrowser::anchorClicked, this, &openWebPage);
}

QVariant ServiceTextBrowser::loadResource(int type, const QUrl& name)
{
    // For a picture that is not given here the document looks on the disk itself; one that is
    // part of its address it reads from there.
    if (type == QTextDocument::ImageResource && name.scheme() != QLatin1String("data"))
        return style()->standardPixmap(QStyle::SP_FileIcon, nullptr, this);
    return {};
}
