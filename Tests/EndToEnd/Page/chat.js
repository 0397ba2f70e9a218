// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// A web chat of our own. Its address chooses how it is built:
//   ?box=textarea, ?box=password   another message box than the rich-text editor
//   ?language=ar                   in Arabic, from right to left
//   ?remake                        each chat that is opened makes the message box anew
// It tells its server what its own document holds, so that a test need not ask the browser; the answer brings what the
// customer writes.
import { languages } from './chats.js';
import * as conversation from './conversation.js';
import { makeBox } from './box.js';

const options = new URLSearchParams(location.search);
const { direction, words, chats } = languages[options.get('language') ?? 'en'];
const state = { load: performance.timeOrigin, chat: '', received: 0, text: '', sent: [], keys: [], blurs: 0 };
let reporting = false;
let stale = false;

// Reports go one after another, so none overtakes another.
async function report() {
  stale = true;
  if (reporting) {
    return;
  }
  reporting = true;
  while (stale) {
    stale = false;
    await fetch('/report', { method: 'POST', body: JSON.stringify(currentState()) })
      .then((answer) => answer.json()).then(receive).catch(() => {});
  }
  reporting = false;
}

// A message counts as received when it has been painted.
async function receive(messages) {
  for (const text of messages) {
    conversation.append({ from: 'them', text, time: '12:56 PM' });
    await new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));
    state.received += 1;
    stale = true;
  }
}

// The middle of an element on the screen.
function placeOf(element) {
  const place = element.getBoundingClientRect();
  const left = window.mozInnerScreenX ?? window.screenX + (window.outerWidth - window.innerWidth) / 2;
  const top = window.mozInnerScreenY ?? window.screenY + window.outerHeight - window.innerHeight;
  return { x: left + place.x + place.width / 2, y: top + place.y + place.height / 2 };
}

function currentState() {
  const entries = [...document.querySelectorAll('.chat')];
  return { ...state, page: location.href, texts: conversation.texts(), box: placeOf(document.getElementById('box')),
    chats: Object.fromEntries(entries.map((entry, i) => [chats[i].id, placeOf(entry)])),
    focused: document.hasFocus() && document.activeElement.id === 'box' };
}

function span(parent, className, text) {
  const made = parent.appendChild(document.createElement('div'));
  made.className = className;
  made.textContent = text;
}

function showChats() {
  const list = document.getElementById('chats');
  for (const chat of chats) {
    const entry = list.appendChild(document.createElement('div'));
    entry.className = 'chat';
    span(entry, 'who', chat.name);
    span(entry, 'when', chat.when);
    span(entry, 'last', chat.last);
    // The message box keeps the focus.
    entry.addEventListener('mousedown', (event) => { event.preventDefault(); show(chat); report(); });
  }
}

function show(chat) {
  state.chat = chat.id;
  document.querySelector('.name').textContent = chat.name;
  document.querySelector('.presence').textContent = chat.presence;
  conversation.open(chat.messages);
  if (options.has('remake') && document.getElementById('box')) {
    buildBox().focus();
  }
}

function send(text) {
  if (text.trim() !== '') {
    state.sent.push(text);
    conversation.append({ from: 'us', text, time: '12:55 PM' });
  }
}

function buildBox() {
  const box = makeBox(options.get('box') ?? 'rich', words.type, (now) => { state.text = now; report(); }, send);
  box.addEventListener('focus', report);
  box.addEventListener('blur', () => { state.blurs += 1; report(); });
  return box;
}

document.documentElement.lang = options.get('language') ?? 'en';
document.documentElement.dir = direction;
for (const [id, label] of [['chats', words.list], ['conversation', words.conversation], ['send', words.send], ['attach', words.attach]]) {
  document.getElementById(id).setAttribute('aria-label', label);
}
showChats();
show(chats[0]);
buildBox();
window.addEventListener('blur', () => { state.blurs += 1; report(); });
window.addEventListener('focus', report);
window.addEventListener('resize', report);
window.addEventListener('keydown', (event) => { state.keys.push(event.key); report(); }, true);
// A window manager may move the window without any event.
setInterval(report, 500);
report();
