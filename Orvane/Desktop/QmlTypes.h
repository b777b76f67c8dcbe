// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AppModel/AppModel.h"
#include "Screens/Panel/PanelModel.h"
#include "Screens/Projects/ProjectsModel.h"
#include "Screens/Review/ReviewModel.h"
#include "Screens/Settings/SettingsModel.h"
#include "Screens/Shell/PlacesModel.h"
#include "Screens/SignIn/SignInModel.h"
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
struct ReviewModelType {
    Q_GADGET
    QML_FOREIGN(orvane::ReviewModel)
    QML_NAMED_ELEMENT(ReviewModel)
    QML_UNCREATABLE("made by the program")
};
struct OfferListType {
    Q_GADGET
    QML_FOREIGN(orvane::OfferList)
    QML_NAMED_ELEMENT(OfferList)
    QML_UNCREATABLE("of the ReviewModel")
};
struct SettledListType {
    Q_GADGET
    QML_FOREIGN(orvane::SettledList)
    QML_NAMED_ELEMENT(SettledList)
    QML_UNCREATABLE("of the ReviewModel")
};
struct SignInModelType {
    Q_GADGET
    QML_FOREIGN(orvane::SignInModel)
    QML_NAMED_ELEMENT(SignInModel)
    QML_UNCREATABLE("made by the program")
};
struct PlacesModelType {
    Q_GADGET
    QML_FOREIGN(orvane::PlacesModel)
    QML_NAMED_ELEMENT(PlacesModel)
    QML_UNCREATABLE("made by the program")
};
struct WindowChoicesType {
    Q_GADGET
    QML_FOREIGN(orvane::WindowChoices)
    QML_NAMED_ELEMENT(WindowChoices)
    QML_UNCREATABLE("of the AppModel")
};
struct KeyTableType {
    Q_GADGET
    QML_FOREIGN(orvane::KeyTable)
    QML_NAMED_ELEMENT(KeyTable)
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
    QML_UNCREATABLE("of a screen's model")
};
struct EntryEditorType {
    Q_GADGET
    QML_FOREIGN(orvane::EntryEditor)
    QML_NAMED_ELEMENT(EntryEditor)
    QML_UNCREATABLE("of the TimerModel")
};
struct DescriptionSuggestionsType {
    Q_GADGET
    QML_FOREIGN(orvane::DescriptionSuggestions)
    QML_NAMED_ELEMENT(DescriptionSuggestions)
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
struct PanelModelType {
    Q_GADGET
    QML_FOREIGN(orvane::PanelModel)
    QML_NAMED_ELEMENT(PanelModel)
    QML_UNCREATABLE("made by the program")
};
struct PanelRowsType {
    Q_GADGET
    QML_FOREIGN(orvane::PanelRows)
    QML_NAMED_ELEMENT(PanelRows)
    QML_UNCREATABLE("of the PanelModel")
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
struct ProjectsModelType {
    Q_GADGET
    QML_FOREIGN(orvane::ProjectsModel)
    QML_NAMED_ELEMENT(ProjectsModel)
    QML_UNCREATABLE("made by the program")
};
struct ProjectRowsType {
    Q_GADGET
    QML_FOREIGN(orvane::ProjectRows)
    QML_NAMED_ELEMENT(ProjectRows)
    QML_UNCREATABLE("of the ProjectsModel")
};
struct NameListType {
    Q_GADGET
    QML_FOREIGN(orvane::NameList)
    QML_NAMED_ELEMENT(NameList)
    QML_UNCREATABLE("of the ProjectsModel")
};
struct ProjectEditorType {
    Q_GADGET
    QML_FOREIGN(orvane::ProjectEditor)
    QML_NAMED_ELEMENT(ProjectEditor)
    QML_UNCREATABLE("of the ProjectsModel")
};
struct TaskRowsType {
    Q_GADGET
    QML_FOREIGN(orvane::TaskRows)
    QML_NAMED_ELEMENT(TaskRows)
    QML_UNCREATABLE("of the ProjectEditor")
};
struct CatalogRemovalType {
    Q_GADGET
    QML_FOREIGN(orvane::CatalogRemoval)
    QML_NAMED_ELEMENT(CatalogRemoval)
    QML_UNCREATABLE("of the ProjectsModel")
};
struct SettingsModelType {
    Q_GADGET
    QML_FOREIGN(orvane::SettingsModel)
    QML_NAMED_ELEMENT(SettingsModel)
    QML_UNCREATABLE("made by the program")
};
struct TimeSettingsType {
    Q_GADGET
    QML_FOREIGN(orvane::TimeSettings)
    QML_NAMED_ELEMENT(TimeSettings)
    QML_UNCREATABLE("of the SettingsModel")
};
struct ShortcutRowsType {
    Q_GADGET
    QML_FOREIGN(orvane::ShortcutRows)
    QML_NAMED_ELEMENT(ShortcutRows)
    QML_UNCREATABLE("of the SettingsModel")
};
struct WorkspaceRulesType {
    Q_GADGET
    QML_FOREIGN(orvane::WorkspaceRules)
    QML_NAMED_ELEMENT(WorkspaceRules)
    QML_UNCREATABLE("of the SettingsModel")
};
struct AccountDetailsType {
    Q_GADGET
    QML_FOREIGN(orvane::AccountDetails)
    QML_NAMED_ELEMENT(AccountDetails)
    QML_UNCREATABLE("of the SettingsModel")
};
struct AccountLoginsType {
    Q_GADGET
    QML_FOREIGN(orvane::AccountLogins)
    QML_NAMED_ELEMENT(AccountLogins)
    QML_UNCREATABLE("of the SettingsModel")
};
struct PasskeyPromptType {
    Q_GADGET
    QML_FOREIGN(orvane::PasskeyPrompt)
    QML_NAMED_ELEMENT(PasskeyPrompt)
    QML_UNCREATABLE("of the screen that asks")
};
struct AgentConnectionsType {
    Q_GADGET
    QML_FOREIGN(orvane::AgentConnections)
    QML_NAMED_ELEMENT(AgentConnections)
    QML_UNCREATABLE("of the SettingsModel")
};
struct AgentConnectionType {
    Q_GADGET
    QML_FOREIGN(orvane::AgentConnection)
    QML_NAMED_ELEMENT(AgentConnection)
    QML_UNCREATABLE("of the AgentConnections")
};
struct AgentAskingType {
    Q_GADGET
    QML_FOREIGN(orvane::AgentAsking)
    QML_NAMED_ELEMENT(AgentAsking)
    QML_UNCREATABLE("of the AgentConnections")
};
struct SignedInAgentsType {
    Q_GADGET
    QML_FOREIGN(orvane::SignedInAgents)
    QML_NAMED_ELEMENT(SignedInAgents)
    QML_UNCREATABLE("of the AgentConnections")
};
struct SyncDetailsType {
    Q_GADGET
    QML_FOREIGN(orvane::SyncDetails)
    QML_NAMED_ELEMENT(SyncDetails)
    QML_UNCREATABLE("of the SettingsModel")
};

} // namespace orvane::qml
