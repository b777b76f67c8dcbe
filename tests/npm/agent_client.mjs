// SPDX-License-Identifier: GPL-3.0-or-later
// The agents' protocol, by its official client at our server: agent_client.mjs BIN_FOLDER MODULES_FOLDER
// It finds the way to sign in by itself, and holds every answer of a tool against the schema that the tool gave.
import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import path from 'node:path';
import { SigningAgent } from './agent_sign_in.mjs';
import { OrvaneServer } from './orvane_server.mjs';

const [binFolder, modules] = process.argv.slice(2);
const require = createRequire(path.join(path.resolve(modules), 'modules.js'));
const { Client } = require('@modelcontextprotocol/sdk/client/index.js');
const { StreamableHTTPClientTransport } = require('@modelcontextprotocol/sdk/client/streamableHttp.js');
const { UnauthorizedError } = require('@modelcontextprotocol/sdk/client/auth.js');

const email = 'grace@example.org';
const password = 'correct horse battery';
const hour = 3_600_000;
/** The last full hour but three, so that nothing lies in the future. */
const morning = Math.floor(Date.now() / hour) * hour - 3 * hour;
const at = (hours) => new Date(morning + hours * hour).toISOString();

class Agent {
    constructor(address) {
        this.address = new URL(address);
        this.identity = new SigningAgent();
    }

    async connect() {
        this.client = new Client({ name: 'test-agent', version: '1.0.0' });
        this.transport = new StreamableHTTPClientTransport(this.address, { authProvider: this.identity });
        await this.client.connect(this.transport);
    }

    async signIn() {
        await assert.rejects(this.connect(), UnauthorizedError);
        await this.transport.finishAuth(await this.identity.answerInBrowser(email, password));
        await this.connect();
    }

    /** What a tool gives, which must be the same as text. */
    async call(name, given = {}) {
        const result = await this.client.callTool({ name, arguments: given });
        assert.ok(!result.isError, `${name}: ${result.content[0].text}`);
        assert.deepEqual(JSON.parse(result.content[0].text), result.structuredContent);
        return result.structuredContent;
    }

    /** The sentence that a tool refuses with. */
    async refusal(name, given) {
        const result = await this.client.callTool({ name, arguments: given });
        assert.ok(result.isError, `${name} was not refused`);
        return result.content[0].text;
    }
}

/** The user's side: a project with a task, a tag, and one entry. */
async function fillWorkspace(user) {
    const workspaceId = (await user.call('GET', '/api/me')).defaultWorkspaceId;
    const root = `/api/workspaces/${workspaceId}`;
    const client = await user.call('POST', `${root}/clients`, { name: 'Acme' });
    const project = await user.call('POST', `${root}/projects`,
        { name: 'api', clientId: client.id, color: '5b8def', isPrivate: false, isBillable: true });
    const task = await user.call('POST', `${root}/projects/${project.id}/tasks`, { name: 'design' });
    const tag = await user.call('POST', `${root}/tags`, { name: 'deep-work' });
    const entry = await user.call('POST', `${root}/time-entries`, {
        id: 'tracked', description: 'Meeting', tagIds: [], isBillable: false, shares: [], describeParts: false,
        start: at(0), stop: at(1) });
    const entries = () => user.call('GET', `${root}/time-entries?from=${at(-48)}&to=${at(48)}`);
    return { root, workspaceId, project, task, tag, entry, entries };
}

async function readsWhatThereIs(agent, place) {
    const { tools } = await agent.client.listTools();
    assert.deepEqual(tools.map((tool) => tool.name), ['list_workspaces', 'list_projects', 'list_tags', 'list_entries',
        'running_entry', 'propose_entries', 'propose_changes', 'list_proposals', 'withdraw_proposals']);
    for (const tool of tools) {
        const proposes = /^(propose|withdraw)/.test(tool.name);
        assert.equal(tool.annotations.readOnlyHint, !proposes, tool.name);
        assert.equal(tool.annotations.destructiveHint, false, tool.name);
    }
    assert.equal(agent.client.getServerVersion().name, 'orvane');
    assert.match(agent.client.getInstructions(), /Nothing you do here changes an entry/);

    const { workspaces } = await agent.call('list_workspaces');
    assert.deepEqual(workspaces, [{ id: place.workspaceId, name: 'My workspace', isDefault: true }]);
    const { projects } = await agent.call('list_projects', { search: 'AP' });
    assert.deepEqual(projects, [{ id: place.project.id, name: 'api', client: 'Acme', isBillable: true,
        tasks: [{ id: place.task.id, name: 'design' }] }]);
    assert.deepEqual((await agent.call('list_tags')).tags, [{ id: place.tag.id, name: 'deep-work' }]);
    const day = { from: at(-24).slice(0, 10), to: at(24).slice(0, 10) };
    const { entries } = await agent.call('list_entries', day);
    assert.deepEqual(entries.map((entry) => [entry.id, entry.version, entry.description, entry.seconds]),
        [['tracked', place.entry.version, 'Meeting', 3600]]);
    assert.equal((await agent.call('running_entry')).entry, undefined);
    assert.match(await agent.refusal('list_projects', { workspaceId: 'elsewhere' }), /no such workspace for you/);
}

async function proposesAndWaits(agent, user, place) {
    const work = { description: 'Sketch the start page', projectId: place.project.id, taskId: place.task.id,
        tagIds: [place.tag.id], start: at(1), stop: at(2), reason: 'Commits of that hour' };
    const { outcomes } = await agent.call('propose_entries',
        { entries: [{ ...work, reference: 'a' }, { ...work, reference: 'b', projectId: 'no-such' }] });
    assert.equal(outcomes[1].refusal.code, 'unknownProject');
    const changed = await agent.call('propose_changes', { changes: [
        { entryId: 'tracked', version: place.entry.version, description: 'Planning', reason: 'The calendar says so' }] });
    const [added, changing] = [outcomes[0].proposalId, changed.outcomes[0].proposalId];
    assert.ok(added && changing);

    assert.deepEqual(await place.entries(), [place.entry], 'proposals change nothing');
    const listed = async () => Object.fromEntries((await agent.call('list_proposals')).proposals
        .map((proposal) => [proposal.id, proposal]));
    assert.equal((await listed())[added].status, 'pending');

    const applied = await user.call('POST', `${place.root}/agent-proposals/${added}/apply`);
    assert.equal(applied.entries[0].description, 'Sketch the start page');
    const told = (await listed())[added];
    assert.deepEqual([told.status, told.entryId], ['applied', applied.entries[0].id]);
    await user.call('POST', `${place.root}/agent-proposals/${changing}/resolve`, { resolution: 'dismissed' });
    assert.equal((await listed())[changing].status, 'dismissed');

    const again = await agent.call('propose_changes',
        { changes: [{ entryId: 'tracked', version: place.entry.version, remove: true }] });
    const ids = [again.outcomes[0].proposalId, added];
    assert.deepEqual((await agent.call('withdraw_proposals', { ids })).withdrawnIds, [ids[0]]);
    assert.deepEqual((await place.entries()).find((entry) => entry.id === 'tracked'), place.entry);
}

/** The user signs the agent out; the client then wants to sign in anew. */
async function isSignedOut(agent, user) {
    await assert.rejects(user.server.call('GET', '/api/me', undefined,
        { Authorization: `Bearer ${agent.identity.kept.access_token}` }), /401/);
    const sessions = await user.call('GET', '/api/me/sessions');
    const own = sessions.find((session) => session.agent);
    await user.call('DELETE', `/api/me/sessions/${own.id}`);
    await assert.rejects(agent.client.callTool({ name: 'list_tags', arguments: {} }), UnauthorizedError);
}

const server = new OrvaneServer(binFolder);
try {
    await server.start();
    const user = await server.register(email, password);
    const place = await fillWorkspace(user);
    const agent = new Agent(server.url + '/mcp');
    await agent.signIn();
    await readsWhatThereIs(agent, place);
    await proposesAndWaits(agent, user, place);
    const log = server.log();
    for (const secret of [agent.identity.kept.access_token, agent.identity.kept.refresh_token, 'Sketch the start page'])
        assert.ok(!log.includes(secret), 'the log tells what it should not');
    await isSignedOut(agent, user);
    await agent.client.close();
    console.log('the official client read, proposed and was signed out');
} finally {
    server.remove();
}
