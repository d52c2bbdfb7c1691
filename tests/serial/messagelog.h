#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QtGlobal>

// Collects the messages logged while it lives (and still prints them).
class MessageLog
{
public:
    MessageLog()
    {
        entries().clear();
        m_previous = qInstallMessageHandler(&MessageLog::handler);
        previous() = m_previous;
    }
    ~MessageLog() { qInstallMessageHandler(m_previous); }
    MessageLog(const MessageLog &) = delete;
    MessageLog &operator=(const MessageLog &) = delete;

    QStringList messages(QtMsgType type) const
    {
        QStringList result;
        for (const auto &entry : entries()) {
            if (entry.first == type)
                result.append(entry.second);
        }
        return result;
    }
    int count() const { return entries().size(); }
    int count(QtMsgType type, const QRegularExpression &pattern) const
    {
        return messages(type).filter(pattern).size();
    }

private:
    static QVector<QPair<QtMsgType, QString>> &entries()
    {
        static QVector<QPair<QtMsgType, QString>> list;
        return list;
    }
    static QtMessageHandler &previous()
    {
        static QtMessageHandler handler = nullptr;
        return handler;
    }
    static void handler(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        entries().append({type, text});
        if (previous())
            previous()(type, context, text);
    }

    QtMessageHandler m_previous = nullptr;
};
