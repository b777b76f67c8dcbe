// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "EntryInput/SentencePlan.h"
#include "QuickEntry/EntrySentence.h"
#include "Support/Task.h"
#include "Tracker/Tracker.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariantList>

namespace orvane {

class AppModel;

/// A field that takes an entry as one sentence, and what is understood of it while it is typed. It takes any
/// sentence; what was perhaps meant otherwise is said before Return.
///
/// Owner: the screen's view model. Thread: the main thread.
class EntryField final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    /// Where the time phrase stands: { start, length } in UTF-16 units, in order.
    Q_PROPERTY(QVariantList timeRanges READ timeRanges NOTIFY readingChanged)
    /// What is understood: { kind, name, color }, in the order project, client, tags, billable.
    Q_PROPERTY(QVariantList chips READ chips NOTIFY readingChanged)
    /// "15:20 – now", and how long that is; empty without a time.
    Q_PROPERTY(QString span READ span NOTIFY readingChanged)
    Q_PROPERTY(QString spanLength READ spanLength NOTIFY readingChanged)
    /// What was not taken as it was perhaps meant, a sentence each.
    Q_PROPERTY(QStringList notes READ notes NOTIFY readingChanged)
    /// What Return will do, as its key says it ("Start at 15:20") and in words; empty while nothing is typed.
    Q_PROPERTY(QString action READ action NOTIFY readingChanged)
    Q_PROPERTY(QString plan READ plan NOTIFY readingChanged)

public:
    /// `place` names it among the drafts.
    EntryField(AppModel &app, std::string place);

    QString text() const { return m_text; }
    void setText(const QString &text);
    QVariantList timeRanges() const;
    QVariantList chips() const;
    QString span() const;
    QString spanLength() const;
    QStringList notes() const { return m_notes; }
    QString action() const { return QString::fromStdString(m_plan.action); }
    QString plan() const { return QString::fromStdString(m_plan.words); }

    /// What is understood of it, and the names that it can mention.
    const EntrySentence::Reading &reading() const { return m_reading; }
    const SentenceCatalog &names();

    /// Records the sentence. The field is empty afterwards, unless it could not be recorded.
    Q_INVOKABLE void submit();

Q_SIGNALS:
    void textChanged();
    void readingChanged();
    /// How `submit` of a sentence ended; what was typed stands in the field again when it failed.
    void recorded(bool isDone);

private:
    void follow();
    void readAgain();
    void read();
    SentencePlan planned() const;
    Task<> record();

    AppModel *m_app;
    std::string m_place;
    QPointer<Tracker> m_tracker;
    SentenceCatalog m_names;
    bool m_areNamesStale = true;
    QString m_text;
    EntrySentence::Reading m_reading;
    std::optional<EntrySentence::Span> m_span;
    QStringList m_notes;
    SentencePlan m_plan;
    std::chrono::sys_time<std::chrono::minutes> m_readAt;
};

} // namespace orvane
