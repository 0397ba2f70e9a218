// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The conversation: rows at places of their own in a tall empty element, of which only those near the view exist.

const view = document.getElementById('conversation');
const spacer = document.getElementById('spacer');
const nearby = 200;
const tick = '<svg class="tick" viewBox="0 0 14 9" aria-hidden="true"><path d="M1 5l3 3 6-7M7 8l6-7" fill="none" stroke="#5b6cff" stroke-width="1.3"/></svg>';

let messages = [];
let tops = [0];
let shown = new Map();
let words = {};

export function setUp(languageWords) {
  words = languageWords;
  view.addEventListener('scroll', show);
  window.addEventListener('resize', () => place(atEnd()));
}

export function open(list) {
  messages = list;
  spacer.textContent = '';
  shown = new Map();
  place(true);
}

export function append(message) {
  messages.push(message);
  place(true);
}

/** So far up that the message is the first in view. */
export function scrollTo(index) {
  view.scrollTop = tops[index];
  show();
}

function atEnd() {
  return view.scrollTop + view.clientHeight > view.scrollHeight - 5;
}

function place(toEnd) {
  measure();
  show();
  if (toEnd) {
    view.scrollTop = view.scrollHeight;
    show();
  }
}

// All rows stand in the page for a moment, so that each has its true height.
function measure() {
  const rows = messages.map((message, i) => shown.get(i) ?? rowFor(message));
  spacer.classList.add('whole');
  spacer.replaceChildren(...rows);
  tops = [0];
  for (const row of rows) {
    tops.push(tops.at(-1) + row.offsetHeight);
  }
  spacer.classList.remove('whole');
  spacer.replaceChildren(...[...shown.keys()].map((i) => rows[i]));
  spacer.style.height = tops.at(-1) + 'px';
}

function show() {
  const from = view.scrollTop - nearby;
  const to = view.scrollTop + view.clientHeight + nearby;
  const near = messages.map((_, i) => i).filter((i) => tops[i + 1] > from && tops[i] < to);
  const next = new Map(near.map((i) => [i, shown.get(i) ?? rowFor(messages[i])]));
  for (const [i, row] of shown) {
    if (!next.has(i)) {
      row.remove();
    }
  }
  let before = null;
  for (const [i, row] of [...next].reverse()) {
    row.style.top = tops[i] + 'px';
    if (row.parentNode !== spacer || row.nextSibling !== before) {
      spacer.insertBefore(row, before);
    }
    before = row;
  }
  shown = next;
}

function add(parent, tag, className, text, kind) {
  const made = parent.appendChild(document.createElement(tag));
  made.className = className;
  made.textContent = text ?? '';
  if (kind) {
    made.dataset.kind = kind;
  }
  return made;
}

function rowFor(message) {
  const row = document.createElement('div');
  const apart = message.day ?? message.divider;
  row.className = 'row ' + (apart ? 'apart' : message.from);
  row.dataset.side = apart ? '' : message.from;
  if (apart) {
    add(row, 'div', 'chip', apart, message.day ? 'day' : 'divider');
  } else {
    fillBubble(add(row, 'div', 'bubble'), message);
  }
  return row;
}

function fillBubble(bubble, message) {
  if (message.forwarded) {
    add(bubble, 'div', 'forwarded', words.forwarded, 'forwarded');
  }
  if (message.quote) {
    const quote = add(bubble, 'div', 'quote');
    add(quote, 'div', 'author', message.quote.author, 'quote');
    add(quote, 'div', 'quoted', message.quote.text, 'quote');
  }
  const body = add(bubble, 'div', 'body');
  fillText(add(body, 'span', 'text', '', 'message'), message.text);
  add(body, 'span', 'time', message.time, 'time');
  if (message.from === 'us') {
    body.insertAdjacentHTML('beforeend', tick);
  }
}

function fillText(place, text) {
  for (const piece of text.split(/(https:\S+)/).filter((part) => part !== '')) {
    if (piece.startsWith('https:')) {
      add(place, 'a', '', piece).href = piece;
    } else {
      place.append(piece);
    }
  }
}

/** Every text of the document between the header and the message box, in order, and whose bubble it stands in. */
export function texts() {
  const found = [];
  for (const root of [document.getElementById('header'), spacer]) {
    const walker = document.createTreeWalker(root, NodeFilter.SHOW_TEXT);
    while (walker.nextNode()) {
      const holder = walker.currentNode.parentElement.closest('[data-kind]');
      if (holder) {
        found.push({ kind: holder.dataset.kind, side: holder.closest('.row')?.dataset.side ?? '',
          text: walker.currentNode.data });
      }
    }
  }
  return found;
}
