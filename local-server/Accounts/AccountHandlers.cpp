// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Problems.h"
#include "Names/NameText.h"
#include "Requests/Router.h"
#include "Support/ZoneNames.h"

namespace orvane::server {

namespace {

HttpResponse getServer(Call &call, const operations::GetServer::Input &)
{
    ServerResponse server;
    server.hosted = call.services.isHosted;
    server.registrationOpen = call.services.registrationOpen;
    if (call.services.devProvider)
        server.signInProviders.push_back(
            {std::string(DevProvider::providerName), std::string(DevProvider::displayName)});
    return jsonAnswer(200, server);
}

HttpResponse me(Call &call)
{
    const auto described = describeCaller(call);
    return described ? jsonAnswer(200, *described) : unauthorized("This account no longer exists.");
}

HttpResponse getMe(Call &call, const operations::GetMe::Input &)
{
    return me(call);
}

HttpResponse updateProfile(Call &call, const operations::UpdateProfile::Input &input)
{
    if (hasControlCharacter(input.body.fullName))
        return invalid("fullName", "The name holds characters that cannot be shown.");
    if (!isZone(input.body.timeZone))
        return invalid("timeZone", "This time zone is not known.");
    call.accounts.setProfile(call.caller.userId, trimmed(input.body.fullName), input.body.timeZone);
    call.changedMe();
    return me(call);
}

template <class T>
void take(T &member, const std::optional<T> &change)
{
    if (change)
        member = *change;
}

HttpResponse updatePreferences(Call &call, const operations::UpdatePreferences::Input &input)
{
    const PreferencesRequest &changes = input.body;
    PreferencesResponse preferences = call.accounts.preferences(call.caller.userId);
    take(preferences.weekStart, changes.weekStart);
    take(preferences.dateFormat, changes.dateFormat);
    take(preferences.timeFormat, changes.timeFormat);
    take(preferences.durationFormat, changes.durationFormat);
    take(preferences.pomodoroEnabled, changes.pomodoroEnabled);
    take(preferences.pomodoroMinutes, changes.pomodoroMinutes);
    take(preferences.pomodoroBreakMinutes, changes.pomodoroBreakMinutes);
    take(preferences.pomodoroAutoStop, changes.pomodoroAutoStop);
    call.accounts.setPreferences(call.caller.userId, preferences);
    call.changedMe();
    return jsonAnswer(200, preferences);
}

HttpResponse updateFirstSteps(Call &call, const operations::UpdateFirstSteps::Input &input)
{
    call.accounts.setFirstSteps(call.caller.userId, input.body.firstSteps);
    call.changedMe();
    return noBody(204);
}

HttpResponse setDefaultWorkspace(Call &call, const operations::SetDefaultWorkspace::Input &input)
{
    if (!call.workspaces.role(input.body.workspaceId, call.caller.userId))
        return noSuch("workspace");
    call.accounts.setDefaultWorkspace(call.caller.userId, input.body.workspaceId);
    call.changedMe();
    return noBody(204);
}

} // namespace

std::optional<MeResponse> describeCaller(Call &call)
{
    const std::string &userId = call.caller.userId;
    const auto account = call.accounts.byId(userId);
    if (!account)
        return std::nullopt;
    MeResponse out;
    out.id = account->id;
    out.email = account->email;
    out.emailConfirmed = account->emailConfirmed;
    out.fullName = account->fullName;
    out.timeZone = account->timeZone;
    out.preferences = call.accounts.preferences(userId);
    out.defaultWorkspaceId = account->defaultWorkspaceId;
    out.organizations = call.workspaces.organizationsOf(userId);
    out.workspaces = call.workspaces.of(userId);
    out.isOperator = account->isLocal;
    out.firstSteps = call.accounts.firstSteps(userId);
    out.hasPassword = account->passwordHash.has_value();
    return out;
}

void addServerHandlers(Router &router)
{
    router.add<operations::GetServer>(getServer);
}

void addAccountHandlers(Router &router)
{
    router.add<operations::GetMe>(getMe);
    router.add<operations::UpdateProfile>(updateProfile);
    router.add<operations::UpdatePreferences>(updatePreferences);
    router.add<operations::UpdateFirstSteps>(updateFirstSteps);
    router.add<operations::SetDefaultWorkspace>(setDefaultWorkspace);
}

} // namespace orvane::server
