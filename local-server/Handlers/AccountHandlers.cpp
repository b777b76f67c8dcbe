// SPDX-License-Identifier: GPL-3.0-or-later
#include "Handlers/Router.h"
#include "Http/Problems.h"
#include "Records/NameText.h"
#include "Support/ZoneNames.h"

namespace orvane::server {

namespace {

HttpResponse getServer(Call &call, const operations::GetServer::Input &)
{
    ServerResponse server;
    server.hosted = false;
    server.registrationOpen = call.services.registrationOpen;
    return jsonAnswer(200, server);
}

HttpResponse me(Call &call)
{
    Services &services = call.services;
    const std::string &userId = call.caller.userId;
    const auto account = services.accounts.byId(userId);
    if (!account)
        return unauthorized("This account no longer exists.");
    MeResponse out;
    out.id = account->id;
    out.email = account->email;
    out.emailConfirmed = account->emailConfirmed;
    out.fullName = account->fullName;
    out.timeZone = account->timeZone;
    out.preferences = services.accounts.preferences(userId);
    out.defaultWorkspaceId = account->defaultWorkspaceId;
    out.organizations = services.workspaces.organizationsOf(userId);
    out.workspaces = services.workspaces.of(userId);
    out.isOperator = account->isLocal;
    out.firstSteps = services.accounts.firstSteps(userId);
    out.hasPassword = account->passwordHash.has_value();
    return jsonAnswer(200, out);
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
    call.services.accounts.setProfile(call.caller.userId, trimmed(input.body.fullName), input.body.timeZone);
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
    PreferencesResponse preferences = call.services.accounts.preferences(call.caller.userId);
    take(preferences.weekStart, changes.weekStart);
    take(preferences.dateFormat, changes.dateFormat);
    take(preferences.timeFormat, changes.timeFormat);
    take(preferences.durationFormat, changes.durationFormat);
    take(preferences.pomodoroEnabled, changes.pomodoroEnabled);
    take(preferences.pomodoroMinutes, changes.pomodoroMinutes);
    take(preferences.pomodoroBreakMinutes, changes.pomodoroBreakMinutes);
    take(preferences.pomodoroAutoStop, changes.pomodoroAutoStop);
    call.services.accounts.setPreferences(call.caller.userId, preferences);
    return jsonAnswer(200, preferences);
}

HttpResponse updateFirstSteps(Call &call, const operations::UpdateFirstSteps::Input &input)
{
    call.services.accounts.setFirstSteps(call.caller.userId, input.body.firstSteps);
    return noBody(204);
}

HttpResponse setDefaultWorkspace(Call &call, const operations::SetDefaultWorkspace::Input &input)
{
    if (!call.services.workspaces.role(input.body.workspaceId, call.caller.userId))
        return noSuch("workspace");
    call.services.accounts.setDefaultWorkspace(call.caller.userId, input.body.workspaceId);
    return noBody(204);
}

} // namespace

void addServerHandlers(Router &router)
{
    router.add<operations::GetServer>(getServer, Access::Anyone);
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
