// SPDX-License-Identifier: GPL-3.0-or-later
#include "WindowFit.h"

#include "dialogs/ElidedLabel.h"

#include <QCalendarWidget>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QStyleOptionButton>
#include <QTableView>
#include <QTextDocument>
#include <QTimeEdit>
#include <QToolButton>

#include <algorithm>

namespace {

/// What the widget's text needs beyond what there is for it, as text; empty when it fits.
QString lack(const QWidget* widget, const QSize& needed, const QSize& given)
{
    if (needed.width() <= given.width() && needed.height() <= given.height())
        return QString();
    return QStringLiteral("%1 of %2: %3x%4 in %5x%6")
        .arg(widget->objectName(), QLatin1String(widget->window()->metaObject()->className()))
        .arg(needed.width())
        .arg(needed.height())
        .arg(given.width())
        .arg(given.height());
}

/// As wide as the text runs, and as high as its ink: some lines are lower than those of a
/// paragraph.
QSize textSize(const QWidget* widget, const QString& text)
{
    const QFontMetrics metrics(widget->font());
    return {metrics.horizontalAdvance(text), metrics.tightBoundingRect(text).height()};
}

QString lackOfLabel(const QLabel* label)
{
    // A text from outside may be shortened, and there is a tool tip for it.
    if (dynamic_cast<const ElidedLabel*>(label))
        return QString();
    if (label->text().isEmpty()) {
        // But for those that tell of a request.
        const bool mayBeEmpty = label->objectName() == QLatin1String("lbInfo")
            || label->objectName() == QLatin1String("lbLoading");
        const bool isEmpty = label->pixmap(Qt::ReturnByValue).isNull();
        return isEmpty && !mayBeEmpty ? label->objectName() : QString();
    }
    if (Qt::mightBeRichText(label->text()))
        return lack(label, label->sizeHint(), label->size());
    if (label->wordWrap())
        return lack(label, {0, label->heightForWidth(label->width())}, label->size());
    return lack(label, textSize(label, label->text()), label->contentsRect().size());
}

QString lackOfButton(const QPushButton* button)
{
    // A picture is told by a name, and under the pointer by the same words.
    const QString name = button->text().isEmpty() ? button->accessibleName() : button->text();
    if (name.isEmpty() || (!button->toolTip().isEmpty() && button->toolTip() != name))
        return QStringLiteral("%1 is called \"%2\"").arg(button->objectName(), name);
    QStyleOptionButton option;
    option.initFrom(button);
    return lack(
        button, textSize(button, button->text()),
        button->style()->subElementRect(QStyle::SE_PushButtonContents, &option, button).size());
}

QStringList lacksOfCalendar(QCalendarWidget* calendar)
{
    QStringList lacks;
    const auto days = calendar->findChild<QTableView*>(QStringLiteral("qt_calendar_calendarview"));
    // What an item view leaves free beside a text, before it shortens it.
    const int margin = days->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1;
    for (int row = 0; row < 7; ++row) {
        for (int column = 0; column < 7; ++column) {
            const QModelIndex index = days->model()->index(row, column);
            lacks << lack(days, textSize(days, index.data().toString()),
                          days->visualRect(index).adjusted(margin, 0, -margin, 0).size());
        }
    }
    for (const char* name : {"qt_calendar_monthbutton", "qt_calendar_yearbutton"}) {
        const auto button = calendar->findChild<QToolButton*>(QLatin1String(name));
        for (int month = 1; month <= 12; ++month) {
            calendar->setCurrentPage(2028, month);
            QString text = button->text();
            text[0] = text[0].toUpper();
            lacks << lack(button, textSize(button, text), button->size());
        }
    }
    return lacks;
}

/// Where a part of a window can be seen: of a label its text.
QRect seenPlace(const QWidget* part)
{
    const auto* const label = qobject_cast<const QLabel*>(part);
    if (!label || label->text().isEmpty())
        return part->geometry();
    const QRect text =
        label->fontMetrics().boundingRect(part->geometry(), int(label->alignment()), label->text());
    return text & part->geometry();
}

} // namespace

QStringList lacks(QWidget* window)
{
    QStringList lacks;
    for (const auto label : window->findChildren<QLabel*>()) {
        if (label->isVisible())
            lacks << lackOfLabel(label);
    }
    for (const auto button : window->findChildren<QPushButton*>()) {
        if (button->isVisible())
            lacks << lackOfButton(button);
    }
    for (const auto calendar : window->findChildren<QCalendarWidget*>())
        lacks << lacksOfCalendar(calendar);
    for (const auto time : window->findChildren<QTimeEdit*>()) {
        const auto line = time->findChild<QLineEdit*>();
        lacks << lack(time, textSize(line, line->text()), line->size());
    }
    lacks.removeAll(QString());
    return lacks;
}

QSize bringIntoView(QWidget* part)
{
    const auto area = part->window()->findChild<QScrollArea*>();
    if (!area)
        return part->size();
    area->ensureWidgetVisible(part, 0, 0);
    return part->size().boundedTo(area->viewport()->size());
}

QStringList outOfReach(QWidget* window)
{
    QStringList names;
    const auto parts = window->findChildren<QWidget*>();
    for (QWidget* const part : parts) {
        if (!part->isVisible() || !(part->inherits("QLabel") || part->inherits("QPushButton")))
            continue;
        const QSize room = bringIntoView(part);
        if (part->visibleRegion().boundingRect().size() != room)
            names << part->objectName();
    }
    return names;
}

QStringList overlaps(const QWidget* window)
{
    QStringList names;
    QWidgetList parts = window->findChildren<QWidget*>();
    parts.erase(std::remove_if(parts.begin(), parts.end(),
                               [](const QWidget* part) {
                                   // What only holds others is not seen.
                                   return !part->isVisible()
                                       || qstrcmp(part->metaObject()->className(), "QWidget") == 0;
                               }),
                parts.end());
    for (int i = 0; i < parts.size(); ++i) {
        for (const QWidget* const other : parts.mid(i + 1)) {
            if (parts[i]->parent() == other->parent()
                && seenPlace(parts[i]).intersects(seenPlace(other)))
                names << parts[i]->objectName() + QStringLiteral(" on ") + other->objectName();
        }
    }
    return names;
}
