// SPDX-License-Identifier: GPL-3.0-or-later
// A published WebAuthn server with our passkeys: passkey_server.mjs PASSKEY_MAKER MODULES_FOLDER
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { createRequire } from 'node:module';
import path from 'node:path';
import readline from 'node:readline';

const [maker, modules] = process.argv.slice(2);
const require = createRequire(path.join(path.resolve(modules), 'modules.js'));
const webAuthn = require('@simplewebauthn/server');

const rpID = 'orvane.example';
const expectedOrigin = 'https://orvane.example';
const user = Buffer.from('user-1').toString('base64url');

const program = spawn(maker, { stdio: ['pipe', 'pipe', 'inherit'] });
const lines = readline.createInterface({ input: program.stdout })[Symbol.asyncIterator]();
async function ask(...words) {
    program.stdin.write(words.join(' ') + '\n');
    const { value, done } = await lines.next();
    assert(!done && !value.startsWith('!'), `no answer: ${value}`);
    return JSON.parse(value);
}

async function create() {
    const options = await webAuthn.generateRegistrationOptions({
        rpName: 'Orvane',
        rpID,
        userID: user,
        userName: 'ada@example.org',
        authenticatorSelection: { residentKey: 'required', userVerification: 'required' },
    });
    const response = await ask('create', expectedOrigin, JSON.stringify(options));
    assert.equal(response.authenticatorAttachment, 'platform');
    const expected = { response, expectedOrigin, expectedRPID: rpID, requireUserVerification: true };
    const verified = await webAuthn.verifyRegistrationResponse({ ...expected, expectedChallenge: options.challenge });
    assert(verified.verified);
    await assert.rejects(webAuthn.verifyRegistrationResponse({ ...expected, expectedChallenge: 'AAEC' }));
    return verified.registrationInfo;
}

async function signIn(made) {
    const options = await webAuthn.generateAuthenticationOptions({ rpID, userVerification: 'required' });
    const response = await ask('sign', expectedOrigin, rpID, options.challenge);
    assert.equal(response.response.userHandle, user);
    const expected = {
        response,
        expectedChallenge: options.challenge,
        expectedOrigin,
        expectedRPID: rpID,
        requireUserVerification: true,
        authenticator: made,
    };
    const verified = await webAuthn.verifyAuthenticationResponse(expected);
    assert(verified.verified);
    assert(verified.authenticationInfo.newCounter > made.counter);
    await assert.rejects(webAuthn.verifyAuthenticationResponse({ ...expected, expectedOrigin: 'https://evil.example' }));
    return { ...made, counter: verified.authenticationInfo.newCounter };
}

try {
    await signIn(await signIn(await create()));
} finally {
    program.stdin.end();
}
