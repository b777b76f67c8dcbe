// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

class Database;

/// The clients of workspaces. Names are compared without regard to case; archived clients leave theirs free.
class ClientRecords {
public:
    explicit ClientRecords(Database &database) : m_database(database) {}

    /// In the order of names.
    std::vector<ClientResponse> list(const std::string &workspaceId, bool withArchived);
    /// Those of another workspace are not there.
    std::optional<ClientResponse> find(const std::string &workspaceId, const std::string &id);
    /// Whether another one has the name that this one needs.
    bool isNameTaken(const ClientResponse &client);
    void add(const ClientResponse &client);
    void update(const ClientResponse &client);
    /// Its projects stay, without a client.
    void remove(const std::string &id);

private:
    Database &m_database;
};

} // namespace orvane::server
