// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AppModel/AppModel.h"
#include "Screens/Timer/TimerModel.h"

#include <QtQml/qqml.h>

/// The view models as QML knows them; they themselves know nothing of QML.
namespace orvane::qml {

struct AppModelType {
    Q_GADGET
    QML_FOREIGN(orvane::AppModel)
    QML_NAMED_ELEMENT(AppModel)
    QML_UNCREATABLE("made by the program")
};
struct SyncStatusType {
    Q_GADGET
    QML_FOREIGN(orvane::SyncStatus)
    QML_NAMED_ELEMENT(SyncStatus)
    QML_UNCREATABLE("of the AppModel")
};
struct NoticesType {
    Q_GADGET
    QML_FOREIGN(orvane::Notices)
    QML_NAMED_ELEMENT(Notices)
    QML_UNCREATABLE("of the AppModel")
};
struct TimerModelType {
    Q_GADGET
    QML_FOREIGN(orvane::TimerModel)
    QML_NAMED_ELEMENT(TimerModel)
    QML_UNCREATABLE("made by the program")
};
struct TimerListType {
    Q_GADGET
    QML_FOREIGN(orvane::TimerList)
    QML_NAMED_ELEMENT(TimerList)
    QML_UNCREATABLE("of the TimerModel")
};
struct EntryFieldType {
    Q_GADGET
    QML_FOREIGN(orvane::EntryField)
    QML_NAMED_ELEMENT(EntryField)
    QML_UNCREATABLE("of the TimerModel")
};
struct EntryEditorType {
    Q_GADGET
    QML_FOREIGN(orvane::EntryEditor)
    QML_NAMED_ELEMENT(EntryEditor)
    QML_UNCREATABLE("of the TimerModel")
};
struct ProjectPickerType {
    Q_GADGET
    QML_FOREIGN(orvane::ProjectPicker)
    QML_NAMED_ELEMENT(ProjectPicker)
    QML_UNCREATABLE("of the TimerModel")
};
struct DayRulerType {
    Q_GADGET
    QML_FOREIGN(orvane::DayRuler)
    QML_NAMED_ELEMENT(DayRuler)
    QML_UNCREATABLE("of the TimerModel")
};
struct SplitModelType {
    Q_GADGET
    QML_FOREIGN(orvane::SplitModel)
    QML_NAMED_ELEMENT(SplitModel)
    QML_UNCREATABLE("of the TimerModel")
};
struct SplitRowsType {
    Q_GADGET
    QML_FOREIGN(orvane::SplitRows)
    QML_NAMED_ELEMENT(SplitRows)
    QML_UNCREATABLE("of the SplitModel")
};
struct SeveralEntriesType {
    Q_GADGET
    QML_FOREIGN(orvane::SeveralEntries)
    QML_NAMED_ELEMENT(SeveralEntries)
    QML_UNCREATABLE("of the TimerModel")
};
struct ConflictModelType {
    Q_GADGET
    QML_FOREIGN(orvane::ConflictModel)
    QML_NAMED_ELEMENT(ConflictModel)
    QML_UNCREATABLE("of the TimerModel")
};
struct RefusedListType {
    Q_GADGET
    QML_FOREIGN(orvane::RefusedList)
    QML_NAMED_ELEMENT(RefusedList)
    QML_UNCREATABLE("of the TimerModel")
};
struct ConflictFieldsType {
    Q_GADGET
    QML_FOREIGN(orvane::ConflictFields)
    QML_NAMED_ELEMENT(ConflictFields)
    QML_UNCREATABLE("of the ConflictModel")
};

} // namespace orvane::qml
