// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/QxtGlobalShortcut.h"

#include "RealInput.h"
#include "desktop/QxtGlobal.h"
#include "support/TestMain.h"

#include <QGuiApplication>
#include <QProcess>

namespace {

const QKeySequence combination(Qt::CTRL | Qt::ALT | Qt::Key_K);
const QKeySequence otherCombination(Qt::CTRL | Qt::SHIFT | Qt::Key_F9);

/// Another program that has asked for a combination, until the end of the object's life.
class Holder {
public:
    explicit Holder(const QKeySequence& keys)
    {
        m_process.start(QStringLiteral(HOLDER), {keys.toString(QKeySequence::PortableText)});
    }
    ~Holder()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }
    QByteArray outcome()
    {
        m_process.waitForReadyRead();
        return m_process.readAllStandardOutput().trimmed();
    }

private:
    QProcess m_process;
};

} // namespace

class QxtGlobalShortcutTest : public QObject {
    Q_OBJECT

private slots:
    void properties();
    void activatedWhateverTheLocks_data();
    void activatedWhateverTheLocks();
    void deafWhileDisabled();
    void replaceGivesBack();
    void survivesTheFirstOne();
    void takenByAnotherProgram();
    void refused_data();
    void refused();
};

void QxtGlobalShortcutTest::properties()
{
    QxtGlobalShortcut shortcut;
    QVERIFY(shortcut.isEnabled());
    QVERIFY(shortcut.shortcut().isEmpty());
    shortcut.setDisabled();
    QCOMPARE(shortcut.property("enabled"), QVariant(false));
    shortcut.setEnabled();
    QCOMPARE(shortcut.property("enabled"), QVariant(true));
    QVERIFY(shortcut.setProperty("shortcut", QVariant::fromValue(combination)));
    QCOMPARE(shortcut.shortcut(), combination);
    QCOMPARE(qxtVersion(), "0.7.0");
}

void QxtGlobalShortcutTest::activatedWhateverTheLocks_data()
{
    QTest::addColumn<bool>("caps");
    QTest::addColumn<bool>("num");
    QTest::newRow("none") << false << false;
    QTest::newRow("caps lock") << true << false;
    QTest::newRow("num lock") << false << true;
    QTest::newRow("both") << true << true;
}

void QxtGlobalShortcutTest::activatedWhateverTheLocks()
{
    QFETCH(bool, caps);
    QFETCH(bool, num);
    const auto pressLocks = [caps, num] {
        if (caps)
            RealInput::pressCapsLock();
        if (num)
            RealInput::pressNumLock();
    };
    QxtGlobalShortcut shortcut(combination);
    QSignalSpy activated(&shortcut, &QxtGlobalShortcut::activated);
    pressLocks();
    RealInput::pressKeys(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::ALT | Qt::Key_K));
    RealInput::pressKeys(combination);
    pressLocks();
    QTRY_COMPARE(activated.count(), 1);
    QTest::qWait(100);
    QCOMPARE(activated.count(), 1);
}

void QxtGlobalShortcutTest::deafWhileDisabled()
{
    QxtGlobalShortcut shortcut(combination);
    QxtGlobalShortcut other(otherCombination);
    QSignalSpy activated(&shortcut, &QxtGlobalShortcut::activated);
    QSignalSpy otherActivated(&other, &QxtGlobalShortcut::activated);
    shortcut.setEnabled(false);
    RealInput::pressKeys(combination);
    RealInput::pressKeys(otherCombination);
    QTRY_COMPARE(otherActivated.count(), 1);
    QCOMPARE(activated.count(), 0);

    shortcut.setEnabled(true);
    RealInput::pressKeys(combination);
    QTRY_COMPARE(activated.count(), 1);
}

void QxtGlobalShortcutTest::replaceGivesBack()
{
    QxtGlobalShortcut shortcut(combination);
    QVERIFY(shortcut.setShortcut(QKeySequence(otherCombination[0], combination[0])));
    QCOMPARE(shortcut.shortcut(), otherCombination);
    QCOMPARE(Holder(combination).outcome(), QByteArrayLiteral("held"));

    QSignalSpy activated(&shortcut, &QxtGlobalShortcut::activated);
    RealInput::pressKeys(combination);
    RealInput::pressKeys(otherCombination);
    QTRY_COMPARE(activated.count(), 1);
}

void QxtGlobalShortcutTest::survivesTheFirstOne()
{
    auto first = std::make_unique<QxtGlobalShortcut>(otherCombination);
    QxtGlobalShortcut second(combination);
    QSignalSpy activated(&second, &QxtGlobalShortcut::activated);
    first.reset();
    QCOMPARE(Holder(otherCombination).outcome(), QByteArrayLiteral("held"));
    RealInput::pressKeys(combination);
    QTRY_COMPARE(activated.count(), 1);
}

void QxtGlobalShortcutTest::takenByAnotherProgram()
{
    QxtGlobalShortcut shortcut;
    {
        Holder holder(combination);
        QCOMPARE(holder.outcome(), QByteArrayLiteral("held"));
        QTest::ignoreMessage(QtWarningMsg, "QxtGlobalShortcut failed to register: \"Ctrl+Alt+K\"");
        QVERIFY(!shortcut.setShortcut(combination));
        QCOMPARE(shortcut.shortcut(), combination);
    }
    QTest::ignoreMessage(QtWarningMsg, "QxtGlobalShortcut failed to unregister: \"Ctrl+Alt+K\"");
    QTRY_VERIFY(shortcut.setShortcut(combination));
    QCOMPARE(Holder(combination).outcome(), QByteArrayLiteral("refused"));
}

void QxtGlobalShortcutTest::refused_data()
{
    QTest::addColumn<QKeySequence>("keys");
    QTest::newRow("same program") << combination;
    // Windows registers these two as well.
#ifndef Q_OS_WIN
    QTest::newRow("unlisted key") << QKeySequence(Qt::CTRL | Qt::Key_Eacute);
    QTest::newRow("empty") << QKeySequence();
#endif
}

void QxtGlobalShortcutTest::refused()
{
    QFETCH(QKeySequence, keys);
    QxtGlobalShortcut holder(combination);
    QSignalSpy activated(&holder, &QxtGlobalShortcut::activated);
    {
        QxtGlobalShortcut shortcut;
        const QString text =
            QStringLiteral("to register: \"%1\"").arg(keys.toString(QKeySequence::PortableText));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QRegularExpression::escape(text)));
        QVERIFY(!shortcut.setShortcut(keys));
        if (!keys.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("to unregister")));
    }
    RealInput::pressKeys(combination);
    QTRY_COMPARE(activated.count(), 1);
}

TESSAPORT_TEST_MAIN(QxtGlobalShortcutTest, QGuiApplication)
#include "tst_qxtglobalshortcut.moc"
