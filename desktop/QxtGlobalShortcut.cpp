// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/QxtGlobalShortcut.h"

#include "platform/HotKeys.h"

#include <QAbstractEventDispatcher>
#include <QAbstractNativeEventFilter>
#include <QDebug>
#include <QHash>
#include <QPointer>
#include <QVector>

class QxtGlobalShortcutPrivate : public QAbstractNativeEventFilter {
public:
    QxtGlobalShortcutPrivate();
    ~QxtGlobalShortcutPrivate() override;

    bool nativeEventFilter(const QByteArray& eventType, void* message, long* result) override;

    QKeySequence sequence() const { return QKeySequence(int(m_key) | int(m_mods)); }
    bool setShortcut(const QKeySequence& shortcut, QxtGlobalShortcut* owner);
    void unsetShortcut(const QxtGlobalShortcut* owner);

    bool m_enabled = true;
    Qt::Key m_key = Qt::Key(0);
    Qt::KeyboardModifiers m_mods;

private:
    platform::NativeKeys nativeKeys() const
    {
        return {platform::nativeKeyCode(m_key), platform::nativeModifiers(m_mods)};
    }

    /// All that live. The first of them is the one that filters the native events, for all.
    static QVector<QxtGlobalShortcutPrivate*> s_alive;
    /// What could not be given back stays here, and is null once its shortcut is gone.
    static QHash<platform::NativeKeys, QPointer<QxtGlobalShortcut>> s_shortcuts;
};

QVector<QxtGlobalShortcutPrivate*> QxtGlobalShortcutPrivate::s_alive;
QHash<platform::NativeKeys, QPointer<QxtGlobalShortcut>> QxtGlobalShortcutPrivate::s_shortcuts;

QxtGlobalShortcutPrivate::QxtGlobalShortcutPrivate()
{
    s_alive.append(this);
    QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
    if (s_alive.size() == 1 && dispatcher)
        dispatcher->installNativeEventFilter(this);
}

QxtGlobalShortcutPrivate::~QxtGlobalShortcutPrivate()
{
    const bool isFilter = s_alive.constFirst() == this;
    s_alive.removeOne(this);
    QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
    if (!isFilter || !dispatcher)
        return;
    dispatcher->removeNativeEventFilter(this);
    if (!s_alive.isEmpty())
        dispatcher->installNativeEventFilter(s_alive.constFirst());
}

bool QxtGlobalShortcutPrivate::nativeEventFilter(const QByteArray& eventType, void* message, long*)
{
    const auto pressed = platform::hotKeyPress(eventType, message);
    QxtGlobalShortcut* const shortcut = pressed ? s_shortcuts.value(*pressed).data() : nullptr;
    if (shortcut && shortcut->isEnabled())
        emit shortcut->activated();
    return false;
}

bool QxtGlobalShortcutPrivate::setShortcut(const QKeySequence& shortcut, QxtGlobalShortcut* owner)
{
    unsetShortcut(owner);

    const int combination = shortcut[0];
    constexpr int modifierMask =
        Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    m_key = Qt::Key(combination & ~modifierMask);
    m_mods = Qt::KeyboardModifiers(combination & modifierMask);

    if (!platform::registerHotKey(nativeKeys())) {
        qWarning() << "QxtGlobalShortcut failed to register:"
                   << sequence().toString(QKeySequence::PortableText);
        return false;
    }
    s_shortcuts.insert(nativeKeys(), owner);
    return true;
}

void QxtGlobalShortcutPrivate::unsetShortcut(const QxtGlobalShortcut* owner)
{
    if (m_key == 0)
        return;
    if (s_shortcuts.value(nativeKeys()).data() == owner
        && platform::unregisterHotKey(nativeKeys())) {
        s_shortcuts.remove(nativeKeys());
    } else {
        qWarning() << "QxtGlobalShortcut failed to unregister:"
                   << sequence().toString(QKeySequence::PortableText);
    }
    m_key = Qt::Key(0);
    m_mods = Qt::NoModifier;
}

QxtGlobalShortcut::QxtGlobalShortcut(QObject* parent)
    : QObject(parent)
    , m_d(std::make_unique<QxtGlobalShortcutPrivate>())
{
}

QxtGlobalShortcut::QxtGlobalShortcut(const QKeySequence& shortcut, QObject* parent)
    : QxtGlobalShortcut(parent)
{
    setShortcut(shortcut);
}

QxtGlobalShortcut::~QxtGlobalShortcut()
{
    m_d->unsetShortcut(this);
}

QKeySequence QxtGlobalShortcut::shortcut() const
{
    return m_d->sequence();
}

bool QxtGlobalShortcut::setShortcut(const QKeySequence& shortcut)
{
    return m_d->setShortcut(shortcut, this);
}

bool QxtGlobalShortcut::isEnabled() const
{
    return m_d->m_enabled;
}

void QxtGlobalShortcut::setEnabled(bool enabled)
{
    m_d->m_enabled = enabled;
}

void QxtGlobalShortcut::setDisabled(bool disabled)
{
    m_d->m_enabled = !disabled;
}
