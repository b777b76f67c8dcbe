// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"
#include "OrvaneAPI/Schemas.h"
#include "Support/Result.h"

#include <string>

namespace orvane::server {

struct Call;

/// A workspace that the caller of a request belongs to, as it was when the request's transaction began. Made
/// by `enter` alone, so whoever is given one need not ask for leave again.
class WorkspaceAccess {
public:
    /// 404 for a workspace that the caller does not belong to: whether it exists is none of their business.
    static Result<WorkspaceAccess, HttpResponse> enter(Call &call, const std::string &workspaceId);

    const std::string &id() const { return m_id; }
    WorkspaceRole role() const { return m_role; }
    bool isAdmin() const { return m_role == WorkspaceRole::owner || m_role == WorkspaceRole::admin; }
    const WorkspaceSettingsResponse &settings() const { return m_settings; }

private:
    WorkspaceAccess(std::string id, WorkspaceRole role, WorkspaceSettingsResponse settings)
        : m_id(std::move(id)), m_role(role), m_settings(std::move(settings))
    {
    }

    std::string m_id;
    WorkspaceRole m_role;
    WorkspaceSettingsResponse m_settings;
};

/// Why somebody of the workspace may not do something: 403 with a sentence about who may.
HttpResponse notPermitted(std::string_view who);

/// The same with the right to do what `Right` stands for, which says who has it:
///     static bool isHeldBy(const WorkspaceAccess &);
///     static constexpr std::string_view refusal;
template <class Right>
class WorkspaceRight : public WorkspaceAccess {
public:
    /// 403 for who belongs to the workspace and has no such right.
    static Result<WorkspaceRight, HttpResponse> enter(Call &call, const std::string &workspaceId)
    {
        auto access = WorkspaceAccess::enter(call, workspaceId);
        if (!access)
            return failure(std::move(access.error()));
        if (!Right::isHeldBy(*access))
            return failure(notPermitted(Right::refusal));
        return WorkspaceRight(std::move(*access));
    }

private:
    explicit WorkspaceRight(WorkspaceAccess access) : WorkspaceAccess(std::move(access)) {}
};

} // namespace orvane::server
