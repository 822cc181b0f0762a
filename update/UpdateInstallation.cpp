// SPDX-License-Identifier: GPL-3.0-or-later
#include "update/UpdateState.h"

#include "notifications/NotificationManager.h"
#include "session/DataDirectory.h"
#include "update/ElevatedStart.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>

void UpdateState::installUpdate()
{
    const QDir dropDirectory(m_directory->dataDir().filePath(QStringLiteral("update")));
    const QString drop = dropDirectory.filePath(updateProgram);
    const QString installed = updateProgram;
    if (!QFileInfo(drop).isFile())
        return;

    if (QFile::copy(drop, installed)) {
        QFile::remove(drop);
        NotificationManager::instance()->showPlain(
            QStringLiteral("Обновление успешно установлено"));
        return;
    }

    if (!QFile::remove(installed)) {
        qDebug() << "Error! Can't remove file " << installed << " from " << dropDirectory.path();
        return;
    }
    // The notice tells of a first installation only; see docs/decisions.md.
    if (QFile::copy(drop, installed))
        QFile::remove(drop);
    else
        qDebug() << "Error! Can't copy file " << installed << " from " << dropDirectory.path();
}
