// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Screens/Timer/SplitMoment.h"
#include "Screens/Timer/SplitRows.h"
#include "Support/Task.h"
#include "Tracker/Tracker.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantList>

namespace orvane {

class AppModel;

/// One entry while it is divided: in time, into two entries, or by percents, into parts that stay one entry.
/// Nothing is changed before `save`, which is one step.
///
/// Owner: the TimerModel. Thread: the main thread.
class SplitModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString entryId READ entryId NOTIFY entryChanged)
    Q_PROPERTY(QString title READ title NOTIFY entryChanged)
    Q_PROPERTY(QString about READ about NOTIFY momentChanged)
    Q_PROPERTY(bool isSplit READ isSplit NOTIFY entryChanged)
    Q_PROPERTY(bool canSplitAtTime READ canSplitAtTime NOTIFY momentChanged)
    Q_PROPERTY(Mode mode READ mode WRITE setMode NOTIFY modeChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)
    Q_PROPERTY(bool isMomentWrong READ isMomentWrong NOTIFY problemChanged)
    Q_PROPERTY(QString moment MEMBER m_typedMoment NOTIFY momentChanged)
    Q_PROPERTY(QString momentText READ momentText NOTIFY momentChanged)
    Q_PROPERTY(double position READ position NOTIFY momentChanged)
    /// Of the time's ruler: { text, position }, the entry's start and end first and last.
    Q_PROPERTY(QVariantList marks READ marks NOTIFY marksChanged)
    Q_PROPERTY(orvane::SplitRows *halves READ halves CONSTANT)
    Q_PROPERTY(orvane::SplitRows *parts READ parts CONSTANT)
    Q_PROPERTY(QString total READ total NOTIFY momentChanged)
    Q_PROPERTY(bool canAddPart READ canAddPart NOTIFY partsChanged)
    Q_PROPERTY(bool canRemovePart READ canRemovePart NOTIFY partsChanged)

public:
    enum class Mode { AtTime, ByPercent };
    Q_ENUM(Mode)

    explicit SplitModel(AppModel &app);

    /// Empty while no entry is divided.
    QString entryId() const { return QString::fromStdString(m_entryId); }
    QString title() const;
    /// When it lies and how long: "09:10 – 10:35 · 1h 25m".
    QString about() const;
    /// It has parts already, which can be joined again.
    bool isSplit() const { return !m_base.shares.empty(); }
    /// It holds a minute at which it can be divided.
    bool canSplitAtTime() const { return m_moment.has_value(); }
    Mode mode() const { return m_mode; }
    void setMode(Mode mode);
    /// Why it cannot be saved as it is; empty when nothing is known against it.
    QString problem() const { return m_problem; }
    bool isMomentWrong() const { return m_isMomentWrong; }
    /// The moment that counts; `moment` is what the field shows.
    QString momentText() const;
    /// The moment within the entry, 0 to 1.
    double position() const { return m_moment ? m_moment->position() : 0; }
    QVariantList marks() const;
    SplitRows *halves() { return &m_halves; }
    SplitRows *parts() { return &m_parts; }
    QString total() const;
    bool canAddPart() const;
    bool canRemovePart() const;

    /// Divides this entry: in time, or by percents when it has parts already. False for one that is gone,
    /// and, told in the notice line, for one that is locked.
    Q_INVOKABLE bool open(const QString &id);
    /// Leaves the entry as it was.
    Q_INVOKABLE void cancel();
    /// As it is shown; stays open when what is typed cannot be read, or is refused before it is sent.
    Q_INVOKABLE void save();
    /// Takes the parts away.
    Q_INVOKABLE void joinAgain();

    /// Takes over what the field of the moment says. False when it says no moment within the entry.
    Q_INVOKABLE bool settleMoment();
    Q_INVOKABLE void nudgeMoment(int minutes);
    /// 0 to 1, from the start to the end of the entry.
    Q_INVOKABLE void moveMoment(double position);

    /// Percents while they are typed or dragged, which may come back to where they were as long as it is the
    /// same part or border; `settlePercents` ends that.
    Q_INVOKABLE void typePercent(int row, const QString &text);
    Q_INVOKABLE void moveBorder(int row, double position);
    Q_INVOKABLE void settlePercents();
    Q_INVOKABLE void nudgePercent(int row, int by);
    Q_INVOKABLE void addPart();
    Q_INVOKABLE void removePart(int row);

Q_SIGNALS:
    void entryChanged();
    void modeChanged();
    void momentChanged();
    void marksChanged();
    void partsChanged();
    void problemChanged();

private:
    /// What is typed or dragged, and what the percents were before.
    struct Gesture {
        bool isBorder = false;
        int row = 0;
        SplitPercents::Percents before;
    };

    void follow();
    void takeEntry();
    void tick();
    void close();
    void tellGone();
    Instant end() const;
    std::vector<TimeEntryResponse> partEntries() const;
    SplitPercents::Percents partPercents() const;
    void showMoment();
    void showTimes();
    void setPercents(const SplitPercents::Percents &percents);
    const SplitPercents::Percents &percentsBefore(bool isBorder, int row);
    void setProblem(const QString &problem, bool isMomentWrong = false);
    void saveAtTime(const TimeEntryResponse &entry);
    void saveByPercent(const TimeEntryResponse &entry);
    Task<> write(Task<SaveResult> saving, QString done);
    void tellStored(const StoredStep &stored);

    AppModel *m_app;
    QPointer<Tracker> m_tracker;
    std::string m_entryId;
    /// The entry as it was when it was opened; its times as they are by now.
    TimeEntryResponse m_base;
    Mode m_mode = Mode::AtTime;
    /// None when the entry is too short.
    std::optional<SplitMoment> m_moment;
    QString m_typedMoment;
    SplitRows m_halves;
    SplitRows m_parts;
    std::optional<Gesture> m_gesture;
    QString m_problem;
    bool m_isMomentWrong = false;
    /// What is on its way into the store, and what there is to say once it is there.
    struct Telling {
        std::string entryId;
        QString done;
    };
    std::optional<Telling> m_telling;
};

} // namespace orvane
