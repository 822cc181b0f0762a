// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIODevice>

#include <algorithm>

/// The body of a request that is sent once. When a connection ends without an answer, the network
/// layer sends a request again by itself, three times over, unless its body can't be had from the
/// start; the reply ends with QNetworkReply::ContentReSendError then. An empty body has the same
/// effect.
class OneTimeBody : public QIODevice {
    Q_OBJECT

public:
    explicit OneTimeBody(const QByteArray& content)
        : m_content(content)
    {
        // Else a copy is made beforehand, in pieces.
        open(ReadOnly | Unbuffered);
    }

    qint64 size() const override { return m_content.size(); }
    bool atEnd() const override { return m_read == m_content.size(); }
    bool seek(qint64) override { return false; }
    bool reset() override { return false; }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        const qint64 size = std::min(maxSize, m_content.size() - m_read);
        std::copy_n(m_content.cbegin() + m_read, size, data);
        m_read += size;
        return size;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    const QByteArray m_content;
    qint64 m_read = 0;
};
