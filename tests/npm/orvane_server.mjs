// SPDX-License-Identifier: GPL-3.0-or-later
// The real server in a folder of its own, for tests that play published clients against it.
import { spawn } from 'node:child_process';
import { createHash, randomBytes } from 'node:crypto';
import { once } from 'node:events';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import net from 'node:net';
import os from 'node:os';
import path from 'node:path';
import readline from 'node:readline';

export class OrvaneServer {
    constructor(binFolder) {
        this.program = path.join(binFolder, 'orvane-server');
        this.root = mkdtempSync(path.join(os.tmpdir(), 'orvane-'));
        this.folder = path.join(this.root, 'server');
    }

    async start() {
        this.process = spawn(this.program, ['--data-dir', this.folder], { stdio: ['ignore', 'pipe', 'inherit'] });
        this.exited = once(this.process, 'exit');
        this.url = await new Promise((resolve, reject) => {
            readline.createInterface({ input: this.process.stdout }).once('line', resolve);
            this.exited.then(([code]) => reject(new Error(`the server ended with ${code}`)));
        });
    }

    /** Its exit status, once it has ended. */
    async stop(signal = 'SIGTERM') {
        this.process.kill(signal);
        const [code] = await this.exited;
        return code;
    }

    remove() {
        this.process?.kill('SIGKILL');
        rmSync(this.root, { recursive: true, force: true });
    }

    log() {
        return readFileSync(path.join(this.folder, 'server.log'), 'utf8');
    }

    /** A session of the account on this computer. */
    async signIn() {
        const verifier = randomBytes(32).toString('base64url');
        const codeChallenge = createHash('sha256').update(verifier).digest('base64url');
        const { code } = await this.ask({ command: 'code', timeZone: 'UTC', codeChallenge });
        const signedIn = await this.call('POST', '/api/auth/external/exchange', { code, codeVerifier: verifier });
        return new Session(this, signedIn.tokens);
    }

    /** A session of a new account with a password. */
    async register(email, password) {
        return new Session(this, await this.call('POST', '/api/auth/register', { email, password, deviceName: 'laptop' }));
    }

    /** What the server answers at its own socket. */
    async ask(request) {
        const socket = net.connect(path.join(this.folder, 'run', 'server.sock'));
        try {
            socket.write(JSON.stringify(request) + '\n');
            const [line] = await once(readline.createInterface({ input: socket }), 'line');
            return JSON.parse(line);
        } finally {
            socket.destroy();
        }
    }

    async call(method, address, body, headers = {}) {
        const response = await fetch(this.url + address, {
            method,
            headers: body === undefined ? headers : { 'Content-Type': 'application/json', ...headers },
            body: body === undefined ? undefined : JSON.stringify(body),
        });
        const text = await response.text();
        if (!response.ok) throw new Error(`${method} ${address}: ${response.status} ${text}`);
        return text === '' ? undefined : JSON.parse(text);
    }
}

export class Session {
    constructor(server, tokens) {
        this.server = server;
        this.token = tokens.accessToken;
        this.refreshToken = tokens.refreshToken;
    }

    call(method, address, body, headers = {}) {
        return this.server.call(method, address, body, { Authorization: `Bearer ${this.token}`, ...headers });
    }
}
