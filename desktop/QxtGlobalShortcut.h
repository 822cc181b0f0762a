// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QKeySequence>
#include <QObject>

#include <memory>

class QxtGlobalShortcutPrivate;

// Qt hides one entry of the meta-object from other programs; this class offers them all.
#pragma push_macro("Q_DECL_HIDDEN_STATIC_METACALL")
#undef Q_DECL_HIDDEN_STATIC_METACALL
#define Q_DECL_HIDDEN_STATIC_METACALL

/// A key combination that works whichever application has the focus. Belongs in the GUI thread.
/// A combination can be held by one object only, on the whole desktop.
class Q_DECL_EXPORT QxtGlobalShortcut : public QObject {
    Q_OBJECT
    // clazy:excludeall=qproperty-without-notify
    Q_PROPERTY(bool enabled READ isEnabled WRITE setEnabled)
    Q_PROPERTY(QKeySequence shortcut READ shortcut WRITE setShortcut)

public:
    explicit QxtGlobalShortcut(QObject* parent = nullptr);
    explicit QxtGlobalShortcut(const QKeySequence& shortcut, QObject* parent = nullptr);
    ~QxtGlobalShortcut() override;

    /// The combination last set, whether or not the system granted it; empty when there is none.
    QKeySequence shortcut() const;

    /// Gives back the combination held and asks for the first one of this sequence. False, and a
    /// warning in the log, when the system refuses it. An empty one is asked for like any other.
    bool setShortcut(const QKeySequence& shortcut);

    bool isEnabled() const;

public slots:
    /// While disabled, the combination stays held and its presses go unheard.
    void setEnabled(bool enabled = true);
    void setDisabled(bool disabled = true);

signals:
    /// The combination was pressed; again and again while it is held down.
    void activated();

private:
    friend class QxtGlobalShortcutPrivate;
    std::unique_ptr<QxtGlobalShortcutPrivate> m_d;
};

#pragma pop_macro("Q_DECL_HIDDEN_STATIC_METACALL")
