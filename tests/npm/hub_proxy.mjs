// SPDX-License-Identifier: GPL-3.0-or-later
// Stands between a client and the hub and writes down the frames that pass.
import http from 'node:http';
import { once } from 'node:events';

export class HubProxy {
    /** `frames` are lines: ">" for what the client sends, "<" for what it gets. */
    constructor(WebSocket) {
        this.WebSocket = WebSocket;
        this.frames = [];
        this.clients = new Set();
        this.http = http.createServer((request, response) => this.#forward(request, response));
        this.sockets = new WebSocket.Server({ noServer: true });
        this.http.on('upgrade', (request, socket, head) => this.#join(request, socket, head));
    }

    async listen() {
        this.http.listen(0, '127.0.0.1');
        await once(this.http, 'listening');
        return `http://127.0.0.1:${this.http.address().port}`;
    }

    /** The server behind it, which may change. */
    setUpstream(url) {
        this.upstream = url;
    }

    close() {
        for (const client of this.clients) client.terminate();
        this.http.close();
        this.http.closeAllConnections?.();
    }

    /** Says something to the client in the server's name. */
    say(frame) {
        for (const client of this.clients) this.#pass('<', frame, client);
    }

    #pass(direction, frame, to) {
        this.frames.push(`${direction} ${frame}`);
        if (to.readyState === this.WebSocket.OPEN) to.send(frame);
    }

    #forward(request, response) {
        const passed = http.request(this.upstream + request.url, {
            method: request.method,
            headers: { ...request.headers, host: new URL(this.upstream).host },
        });
        passed.on('response', (answer) => {
            response.writeHead(answer.statusCode, answer.headers);
            answer.pipe(response);
        });
        passed.on('error', () => response.destroy());
        request.pipe(passed);
    }

    async #join(request, socket, head) {
        const headers = request.headers.authorization ? { authorization: request.headers.authorization } : {};
        const server = new this.WebSocket(this.upstream.replace('http', 'ws') + request.url, { headers });
        const refused = () => socket.destroy();
        server.on('error', refused);
        await once(server, 'open').catch(refused);
        if (server.readyState !== this.WebSocket.OPEN) return;
        this.sockets.handleUpgrade(request, socket, head, (client) => {
            this.clients.add(client);
            client.on('message', (frame) => this.#pass('>', frame.toString(), server));
            server.on('message', (frame) => this.#pass('<', frame.toString(), client));
            client.on('close', () => this.clients.delete(client) && server.close());
            server.on('close', () => client.close());
            client.on('error', () => client.terminate());
        });
    }
}
