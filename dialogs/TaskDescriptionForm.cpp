// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/TaskDescriptionForm.h"

#include "dialogs/ElidedLabel.h"
#include "dialogs/PlainToolTip.h"
#include "dialogs/RowList.h"
#include "dialogs/ServiceTextBrowser.h"
#include "dialogs/ShortText.h"
#include "dialogs/TitleText.h"
#include "dialogs/WindowPlace.h"
#include "res/Resources.h"
#include "service/TessaPort.h"
#include "ui_TaskDescriptionForm.h"

#include <QDebug>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>

#include <algorithm>

namespace {

/// In pixels: it leaves room for the size of the file and for the scroll bar.
constexpr int longestFileName = 214;
/// In characters, of what a label shows in one line or a few.
constexpr int longestLabel = 1000;

// As in the task list, the picture named hovered is the one at rest; see docs/decisions.md.
QString pageButtonStyle()
{
    return QStringLiteral(
        "QPushButton{color:#646464}"
        "QPushButton{border-image: "
        "url(:/images/res/images/task_desc_dialog/descr_button_hovered.png);}"
        "QPushButton:hover:!pressed:!checked{border-image: "
        "url(:/images/res/images/task_desc_dialog/descr_button.png);}"
        "QPushButton:checked{border-image: "
        "url(:/images/res/images/task_desc_dialog/descr_button_pressed.png);}"
        "QPushButton:pressed{border-image: "
        "url(:/images/res/images/task_desc_dialog/descr_button_pressed.png); color:#FFFFFF}"
        "QPushButton:disabled{border-image: "
        "url(:/images/res/images/task_desc_dialog/descr_button_pressed.png); color:#BBBBBB}");
}

QString responsibleNames(const TaskInfo& taskInfo)
{
    const QString& executor = taskInfo.executorName;
    const QString& creator = taskInfo.creatorName;
    const QString& auditor = taskInfo.auditorName;
    QStringList names;
    if (!executor.isEmpty())
        names << executor;
    if (!creator.isEmpty() && creator != executor)
        names << creator;
    if (!auditor.isEmpty() && auditor != executor && auditor != creator)
        names << auditor;
    return names.join(QStringLiteral(", "));
}

QLabel* rowLabel(const QString& text, QWidget* row)
{
    const auto label = new ElidedLabel(row);
    label->setObjectName(QStringLiteral("label"));
    label->setTextFormat(Qt::PlainText);
    label->setText(shortText(text, longestLabel));
    return label;
}

} // namespace

TaskDescriptionForm::TaskDescriptionForm(const QString& taskId, TessaPort* service,
                                         const QWidget* listForm, QWidget* parent)
    : AbstractTessaportForm(parent)
    , m_ui(std::make_unique<Ui::TaskDescriptionForm>())
    , m_service(service)
    , m_taskId(taskId)
{
    qDebug() << "TaskDescriptionForm TaskDescriptionForm";
    // A modal window would lock the list, whose buttons have to close it.
    setModal(false);
    m_ui->setupUi(this);
    setObjectName(QStringLiteral("TaskDescriptionForm"));
    m_ui->lbIcon->setPixmap(picture(QStringLiteral(":/images/pbComment.png")));
    m_ui->lbAttIcon->setPixmap(
        picture(QStringLiteral(":/images/res/images/task_desc_dialog/attachment_icon.png")));
    setBackground(QStringLiteral(":/images/res/images/big_fon.png"));
    setMovable(false);
    placeInArea(this, [this, listForm, tallest = height()] {
        const QRect area = availableArea();
        setHeight(std::min(tallest, area.height()), {m_ui->mainWidget, m_ui->copyrightTasksWidget});
        move(area.right() - listForm->width() - width(), listForm->y());
    });

    m_ui->pbCopyrightTasks->setStyleSheet(pageButtonStyle());
    m_ui->pbMainInfo->setStyleSheet(m_ui->pbCopyrightTasks->styleSheet());
    m_ui->textTask->setStyleSheet(QStringLiteral(" QTextBrowser {background-color: transparent;}"));
    // On the list the selector matches nothing; see docs/decisions.md.
    const QString requirementsStyle =
        QStringLiteral(" QTextBrowser {background-color: transparent; color:rgb(100,100,100)}");
    m_ui->textRequirements->setStyleSheet(requirementsStyle);
    m_ui->listKeywords->setStyleSheet(requirementsStyle);
    m_ui->listAttachments->setStyleSheet(
        QStringLiteral("QListWidget::item {background-color: rgb(255, 234, 128);}"));
    m_ui->listAttachments->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum);
    m_ui->copyrightTasksWidget->hide();
    m_ui->lbTaskTitle->hide();

    m_titleText = new TitleText(false, this);
    m_ui->mainLayout->addWidget(m_titleText, 0, 0, 1, 2);
    QPalette palette = m_titleText->palette();
    palette.setColor(QPalette::WindowText, QColor(QStringLiteral("#646464")));
    m_titleText->setPalette(palette);
    m_titleText->setText(QStringLiteral("..."));

    connect(service, &TessaPort::taskInfoUpdated, this, &TaskDescriptionForm::updateTask);
    updateTask(service->session()->taskInfo(taskId));
}

TaskDescriptionForm::~TaskDescriptionForm() = default;

QString TaskDescriptionForm::size_human(float num)
{
    qDebug() << "TaskDescriptionForm size_human";
    static const char* const units[] = {"B", "KB", "MB", "GB", "TB"};
    auto unit = std::begin(units);
    while (num >= 1024.0F && std::next(unit) != std::end(units)) {
        ++unit;
        num *= 0.0009765625F;
    }
    return QString().setNum(num, 'f', 2) + QLatin1Char(' ') + QLatin1String(*unit);
}

void TaskDescriptionForm::updateTask(const TaskInfo& taskInfo)
{
    qDebug() << "TaskDescriptionForm updateTask";
    if (taskInfo.id != m_taskId)
        return;
    m_titleText->setText(taskInfo.title);
    m_titleText->setToolTip(plainToolTip(taskInfo.title));
    m_ui->lbTaskDeadline->setText(
        QStringLiteral("Истекает: ")
        + taskInfo.deadline.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    m_ui->lbResponsible->setText(
        shortText(QStringLiteral("Ответственные: ") + responsibleNames(taskInfo), longestLabel));
    m_ui->lbAttachmentsNumber->setText(QString::number(taskInfo.files.size()));
    updateAttachments(taskInfo.files);
    m_ui->textTask->setText(taskInfo.text);

    m_ui->pbCopyrightTasks->setEnabled(!taskInfo.texts.isEmpty());
    if (taskInfo.texts.isEmpty()) {
        m_ui->mainWidget->show();
        m_ui->copyrightTasksWidget->hide();
    } else {
        updateTextTasksCombobox(taskInfo);
    }
}

void TaskDescriptionForm::on_pbHide_clicked()
{
    qDebug() << "TaskDescriptionForm on_pbHide_clicked";
    hide();
}

void TaskDescriptionForm::on_pbCopyrightTasks_clicked()
{
    qDebug() << "TaskDescriptionForm on_pbCopyrightTasks_clicked";
    m_ui->copyrightTasksWidget->setVisible(true);
    m_ui->mainWidget->setVisible(false);
}

void TaskDescriptionForm::on_pbMainInfo_clicked()
{
    qDebug() << "TaskDescriptionForm on_pbMainInfo_clicked";
    m_ui->copyrightTasksWidget->setVisible(false);
    m_ui->mainWidget->setVisible(true);
}

void TaskDescriptionForm::showAll()
{
    qDebug() << "TaskDescriptionForm showAll";
    if (m_hiddenByHideAll) {
        show();
        m_hiddenByHideAll = false;
    }
}

void TaskDescriptionForm::hideAll()
{
    qDebug() << "TaskDescriptionForm hideAll";
    if (isVisible()) {
        hide();
        m_hiddenByHideAll = true;
    }
}

void TaskDescriptionForm::requestUpdateTask(const QString& id)
{
    qDebug() << "TaskDescriptionForm requestUpdateTask";
    if (m_service->session()->isOnline()) {
        m_service->requestTaskInfo(id);
    } else {
        updateTask(m_service->session()->taskInfo(id));
    }
}

void TaskDescriptionForm::on_cbTexts_currentIndexChanged(int index)
{
    qDebug() << "TaskDescriptionForm on_cbTexts_currentIndexChanged";
    updateTaskText(m_ui->cbTexts->itemData(index, Qt::UserRole).value<TextTask>());
}

void TaskDescriptionForm::updateAttachments(const QList<Attachment>& files)
{
    QVector<Row*> rows;
    for (const Attachment& file : files) {
        const auto row = new Row(m_ui->listAttachments);
        const auto name = rowLabel(file.filenameOrig, row);
        name->setToolTip(plainToolTip(file.filenameOrig));
        name->setFixedHeight(23);
        name->setMaximumWidth(longestFileName);
        // Of 64 bits on every system, unlike a long.
        const auto size = rowLabel(size_human(float(file.size.toLongLong())), row);
        size->setFixedHeight(23);
        const auto layout = new QHBoxLayout(row);
        layout->addWidget(name, 0, Qt::AlignLeft);
        layout->addWidget(size, 0, Qt::AlignRight);
        layout->setContentsMargins(10, 0, 10, 0);
        rows << row;
    }
    setRows(m_ui->listAttachments, 25, rows);
}

void TaskDescriptionForm::updateTextTasksCombobox(const TaskInfo& taskInfo)
{
    qDebug() << "TaskDescriptionForm updateTextTasksCombobox";
    {
        const QSignalBlocker blocker(m_ui->cbTexts);
        m_ui->cbTexts->clear();
        for (const TextTask& textTask : taskInfo.texts) {
            m_ui->cbTexts->addItem(QIcon(), textTask.title, QVariant::fromValue(textTask));
            m_ui->cbTexts->setItemData(m_ui->cbTexts->count() - 1, plainToolTip(textTask.title),
                                       Qt::ToolTipRole);
        }
    }
    updateTaskText(taskInfo.texts.first());
}

void TaskDescriptionForm::updateTaskText(const TextTask& textTask)
{
    qDebug() << "TaskDescriptionForm updateTaskText";
    const QString page = textTask.page.toString();
    const QString escapedPage = page.toHtmlEscaped();
    // What a click would not open is no link.
    m_ui->lbUrl->setText(ServiceTextBrowser::isWebPage(textTask.page) && page.size() <= longestLabel
                             ? QStringLiteral("URL: <a href=\"") + escapedPage
                                 + QStringLiteral("\" style=\"color:rgb(100,100,100)\">")
                                 + escapedPage + QStringLiteral("</a>")
                             : QStringLiteral("URL: ")
                                 + shortText(page, longestLabel).toHtmlEscaped());
    m_ui->textRequirements->setText(textTask.task);
    m_ui->lbSignNumber->setText(
        shortText(QStringLiteral("Количество знаков: ") + textTask.minCount, longestLabel));
    updateKeywords(textTask.keywords);
}

void TaskDescriptionForm::updateKeywords(const QList<Keyword>& keywords)
{
    QVector<Row*> rows;
    for (const Keyword& keyword : keywords) {
        const auto row = new Row(m_ui->listKeywords);
        const auto phrase = rowLabel(keyword.keyword, row);
        phrase->setToolTip(plainToolTip(keyword.keyword));
        phrase->setFixedSize(180, 15);
        const auto exact = rowLabel(QStringLiteral("Точн. ") + keyword.count, row);
        exact->setFixedHeight(15);
        const auto inexact = rowLabel(QStringLiteral("Неточн. ") + keyword.count2, row);
        inexact->setFixedHeight(15);
        const auto layout = new QHBoxLayout(row);
        layout->addWidget(phrase);
        layout->addWidget(exact, 0, Qt::AlignRight);
        layout->addWidget(inexact, 0, Qt::AlignRight);
        layout->setSizeConstraint(QLayout::SetFixedSize);
        layout->setContentsMargins(0, 0, 0, 0);
        rows << row;
    }
    setRows(m_ui->listKeywords, 15, rows);
}
