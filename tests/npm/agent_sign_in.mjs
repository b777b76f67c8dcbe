// SPDX-License-Identifier: GPL-3.0-or-later
// What an agent brings to the official client of its protocol so that it can sign in: where its tokens are kept, and
// a browser. The browser is one without scripts or cookies that fills the server's page in.
import assert from 'node:assert/strict';

/** The values of a form's fields of one type, by name. */
function fieldsOf(page, type) {
    const fields = [];
    for (const [input] of page.matchAll(/<input [^>]*>/g)) {
        const attribute = (name) => input.match(new RegExp(` ${name}="([^"]*)"`))?.[1];
        if (attribute('type') === type) fields.push([attribute('name'), attribute('value')]);
    }
    return fields;
}

async function post(address, fields) {
    const response = await fetch(address, { method: 'POST', redirect: 'manual', body: new URLSearchParams(fields) });
    return { response, page: await response.text() };
}

/** The client's OAuthClientProvider, in memory. */
export class SigningAgent {
    redirectUrl = 'http://127.0.0.1:9/callback';
    clientMetadata = {
        client_name: 'Test Agent',
        redirect_uris: [this.redirectUrl],
        grant_types: ['authorization_code', 'refresh_token'],
        response_types: ['code'],
        token_endpoint_auth_method: 'none',
    };

    clientInformation() {
        return this.client;
    }
    saveClientInformation(client) {
        this.client = client;
    }
    tokens() {
        return this.kept;
    }
    saveTokens(tokens) {
        this.kept = tokens;
    }
    saveCodeVerifier(verifier) {
        this.verifier = verifier;
    }
    codeVerifier() {
        return this.verifier;
    }
    invalidateCredentials(scope) {
        if (scope === 'all' || scope === 'tokens') this.kept = undefined;
        if (scope === 'all' || scope === 'client') this.client = undefined;
    }
    redirectToAuthorization(address) {
        this.opened = address;
    }

    /** Goes through the page that was opened, as a person with a password does; answers the code. */
    async answerInBrowser(email, password) {
        const shown = await fetch(this.opened);
        assert.equal(shown.status, 200);
        assert.match(shown.headers.get('Content-Security-Policy'), /frame-ancestors 'none'/);
        const asked = await shown.text();
        assert.match(asked, /Test Agent/);
        const target = new URL(this.opened.pathname, this.opened);
        const signedIn = await post(target, [...fieldsOf(asked, 'hidden'), ['email', email], ['password', password],
            ['step', 'sign-in']]);
        assert.equal(signedIn.response.status, 200, signedIn.page);
        const allowed = await post(target, [...fieldsOf(signedIn.page, 'hidden'),
            ...fieldsOf(signedIn.page, 'checkbox'), ['step', 'allow']]);
        const back = new URL(allowed.response.headers.get('Location'));
        assert.ok(back.href.startsWith(this.redirectUrl), back.href);
        return back.searchParams.get('code');
    }
}
