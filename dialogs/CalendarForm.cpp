// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/CalendarForm.h"

#include "dialogs/WindowPlace.h"
#include "notifications/NotificationManager.h"
#include "res/Resources.h"
#include "ui_CalendarForm.h"

#include <QDebug>
#include <QTableView>
#include <QTextCharFormat>
#include <QToolButton>

namespace {

void setArrow(QToolButton* button, const QString& resource)
{
    const QPixmap arrow = picture(resource);
    QIcon icon;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Active, QIcon::Selected})
        icon.addPixmap(arrow, mode, QIcon::On);
    button->setIcon(icon);
    // The size of the picture, and not the one of the calendar's sheet: at that one the picture of
    // a scaled screen would be drawn dot by dot, twice as large. And with a border of its own,
    // since the style would fill the raised button of a hovered arrow with the sheet's transparent
    // colour, which comes out black.
    button->setStyleSheet(
        QStringLiteral("QToolButton {icon-size: 16px; width: 24px;"
                       " border: 1px solid transparent; border-radius: 4px;}"
                       "QToolButton:hover {border-color: #D2CEC2; background-color: #FFFFFF;}"
                       "QToolButton:pressed {border-color: #CDA145; background-color: #F6D98A;}"));
}

} // namespace

CalendarForm::CalendarForm(QWidget* parent)
    : AbstractTessaportForm(parent)
    , m_ui(std::make_unique<Ui::CalendarForm>())
{
    qDebug() << "CalendarForm CalendarForm";
    m_ui->setupUi(this);
    setObjectName(QStringLiteral("CalendarForm"));
    m_ui->lbIcon->setPixmap(picture(QStringLiteral(":/icons/res/icons/calendar_icon.png")));
    // One rule of the style sheet serves the confirming buttons of all windows.
    m_ui->pbOk->setObjectName(QStringLiteral("pbTessaport"));
    m_ui->pbCancel->setObjectName(QStringLiteral("pbTessaport"));
    setUpCalendar();
    connect(m_ui->pbOk, &QPushButton::clicked, this, &CalendarForm::accept);
    connect(m_ui->pbCancel, &QPushButton::clicked, this, &CalendarForm::reject);
    setBackground(QStringLiteral(":/images/res/images/kalendar_fon.png"));
    setWindowTitle(m_ui->lbTitle->text());
    // Above the line and within the border of the panel.
    makeScrollable(this, {0, 33, 6, 8}, [this](const QSize& size) {
        setFixedWidth(size.width());
        setHeight(size.height(), {});
    });
}

CalendarForm::~CalendarForm() = default;

QDate CalendarForm::selectedDate() const
{
    qDebug() << "CalendarForm selectedDate";
    return m_ui->calendarWidget->selectedDate();
}

QTime CalendarForm::selectedTime() const
{
    qDebug() << "CalendarForm selectedTime";
    return m_ui->timeEdit->time();
}

QString CalendarForm::getReason() const
{
    qDebug() << "CalendarForm getReason";
    return m_ui->reasonTextEdit->toPlainText();
}

void CalendarForm::accept()
{
    qDebug() << "CalendarForm accept";
    if (m_ui->reasonTextEdit->toPlainText().trimmed().isEmpty()) {
        NotificationManager::instance()->showPlain(QStringLiteral("Введите причину переноса!"));
        return;
    }
    QDialog::accept();
}

void CalendarForm::setUpCalendar()
{
    QCalendarWidget* const calendar = m_ui->calendarWidget;
    calendar->setLocale(QLocale(QLocale::Russian, QLocale::AnyCountry));
    QTextCharFormat weekend = calendar->weekdayTextFormat(Qt::Saturday);
    weekend.setForeground(QColor(249, 156, 0));
    calendar->setWeekdayTextFormat(Qt::Saturday, weekend);
    calendar->setWeekdayTextFormat(Qt::Sunday, weekend);
    calendar->setAutoFillBackground(false);

    // The panel shows through the days.
    const auto days = calendar->findChild<QTableView*>(QStringLiteral("qt_calendar_calendarview"));
    QPalette palette = days->palette();
    palette.setColor(QPalette::AlternateBase, Qt::transparent);
    palette.setColor(QPalette::Base, Qt::transparent);
    days->setPalette(palette);

    const auto month = calendar->findChild<QToolButton*>(QStringLiteral("qt_calendar_monthbutton"));
    month->setEnabled(false);
    month->setMenu(nullptr);
    month->setFixedWidth(60);
    const auto year = calendar->findChild<QToolButton*>(QStringLiteral("qt_calendar_yearbutton"));
    year->setEnabled(false);
    setArrow(calendar->findChild<QToolButton*>(QStringLiteral("qt_calendar_prevmonth")),
             QStringLiteral(":/icons/res/icons/pbarrow_left.png"));
    setArrow(calendar->findChild<QToolButton*>(QStringLiteral("qt_calendar_nextmonth")),
             QStringLiteral(":/icons/res/icons/pbarrow_right.png"));

    calendar->setStyleSheet(QStringLiteral(
        "QMenu { font-size:12px; width: 150px; left: 20px;color:rgb(0, 0, 0);"
        "background-color:rgb(232, 232, 232);selection-background-color:rgb(195, 195, 195);"
        "selection-color:rgb(0, 0, 0);}"
        "QToolButton {icon-size: 48px, 48px;background-color:transparent;"
        "color:rgb(100, 100, 100);height: 15px; width: 40px;}"
        "QAbstractItemView {selection-background-color: rgb(130, 130, 130);}"
        "QTableView {color:rgb(100, 100, 100);}"));
    // That colours the days of the neighbouring months, too; they are the ones drawn as disabled.
    days->setStyleSheet(QStringLiteral("QTableView:disabled {color: #B4B0A5;}"));
    calendar->setFont(QFont(font().family(), 10));

    // Russian writes months and days small, but these stand alone.
    QTextCharFormat header = calendar->headerTextFormat();
    header.setFontCapitalization(QFont::Capitalize);
    calendar->setHeaderTextFormat(header);
    // The window's font and not the calendar's: in that, the longest months would touch the year.
    QFont titleFont = font();
    titleFont.setCapitalization(QFont::Capitalize);
    month->setFont(titleFont);
    year->setFont(titleFont);
}
