// SPDX-License-Identifier: GPL-3.0-or-later
// The protocol's official client at our hub: hub_client.mjs BIN_FOLDER MODULES_FOLDER [--write]
// What it sends and accepts is compared with hub-frames.txt, which --write writes anew; tests of our own client and
// server read it too.
import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { HubProxy } from './hub_proxy.mjs';
import { OrvaneServer } from './orvane_server.mjs';

const [binFolder, modules, mode] = process.argv.slice(2);
const require = createRequire(path.join(path.resolve(modules), 'modules.js'));
const signalR = require('@microsoft/signalr');
const fixture = path.join(path.dirname(fileURLToPath(import.meta.url)), 'hub-frames.txt');
const heading = "# What the official client sends (>) and gets (<), as hub_client.mjs saw it; ␞ ends a record.\n";
const ping = '{"type":6}\x1e';

const later = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));

/** Waits for something to become true. */
async function until(what, condition) {
    for (let i = 0; i < 3000; ++i) {
        if (condition()) return;
        await later(10);
    }
    assert.fail(`in vain: ${what}`);
}

/** Frames in the words of the fixture: without what differs from run to run, each ping once a direction. */
function asKept(frames, names) {
    const kept = [];
    for (let frame of frames) {
        for (const [name, value] of Object.entries(names)) frame = frame.replaceAll(value, `{${name}}`);
        frame = frame.replaceAll('\x1e', '␞');
        if (!frame.includes('"type":6') || !kept.includes(frame)) kept.push(frame);
    }
    // When a ping comes is a matter of time alone.
    const isPing = (frame) => frame.includes('"type":6');
    return heading + [...kept.filter((frame) => !isPing(frame)), ...kept.filter(isPing).sort()].join('\n') + '\n';
}

async function play(server, proxy) {
    await server.start();
    proxy.setUpstream(server.url);
    const [mine, other] = [await server.signIn(), await server.signIn()];
    const me = await mine.call('GET', '/api/me');
    const workspace = me.defaultWorkspaceId;
    const addTag = (session, name, headers) =>
        session.call('POST', `/api/workspaces/${workspace}/tags`, { name }, headers);
    const catalog = { topic: 'catalog', workspaceId: workspace, userId: '' };

    const changes = [];
    const losses = [];
    let returns = 0;
    const connection = new signalR.HubConnectionBuilder()
        .withUrl((await proxy.listen()) + '/api/hubs/sync', { accessTokenFactory: () => mine.token })
        .withAutomaticReconnect({ nextRetryDelayInMilliseconds: () => 100 })
        .configureLogging(signalR.LogLevel.None)
        .build();
    connection.keepAliveIntervalInMilliseconds = 500;
    connection.serverTimeoutInMilliseconds = 3000;
    connection.on('Changed', (change) => changes.push(change));
    connection.onreconnecting((error) => losses.push(String(error)));
    connection.onreconnected(() => ++returns);
    // The server's own come seldom, and this client is impatient.
    const pinging = setInterval(() => proxy.say(ping), 500);
    try {
        await connection.start();
        assert.equal(await connection.invoke('Watch', workspace), true);
        assert.equal(await connection.invoke('Watch', 'nowhere'), false);
        await assert.rejects(connection.invoke('Publish', workspace), /There is no method/);

        await addTag(other, 'by another session');
        await until('the change of another session', () => changes.length > 0);
        await addTag(mine, 'by this one', { 'X-Sync-Connection': connection.connectionId });
        await addTag(other, 'by another session again');
        await until('the second change', () => changes.length > 1);
        assert.deepEqual(changes, [catalog, catalog], 'its own change is not told');
        await connection.send('Unwatch', workspace);
        assert.equal(await connection.invoke('Watch', 'nowhere else'), false);
        await addTag(other, 'unseen');
        // What was silent for longer than the client bears without pings is alive thanks to them.
        const before = proxy.frames.length;
        await until('pings', () => proxy.frames.slice(before).filter((frame) => frame === `< ${ping}`).length > 8);
        assert.equal(connection.state, signalR.HubConnectionState.Connected);
        assert.equal(changes.length, 2);

        assert.equal(await server.stop(), 0);
        await until('the loss', () => losses.length > 0);
        assert.match(losses[0], /The server is stopping/);
        await server.start();
        proxy.setUpstream(server.url);
        await until('the return', () => returns > 0);
        assert.equal(await connection.invoke('Watch', workspace), true);
        await addTag(other, 'after the restart');
        await until('the change after the restart', () => changes.length > 2);
        assert.deepEqual(changes[2], catalog);
        await connection.stop();
    } finally {
        clearInterval(pinging);
        await connection.stop();
    }
    for (const session of [mine, other]) assert.ok(!server.log().includes(session.token), 'a token is in the log');
    return asKept(proxy.frames, { workspace });
}

const server = new OrvaneServer(binFolder);
const proxy = new HubProxy(require('ws'));
try {
    const seen = await play(server, proxy);
    if (mode === '--write') writeFileSync(fixture, seen);
    assert.equal(seen, readFileSync(fixture, 'utf8'), 'the frames differ from those kept');
    console.log('the official client got all that it wanted');
} finally {
    proxy.close();
    server.remove();
}
