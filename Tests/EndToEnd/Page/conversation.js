// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The conversation, one row for each message.

const view = document.getElementById('conversation');

export function open(messages) {
  view.replaceChildren(...messages.map(rowFor));
  view.scrollTop = view.scrollHeight;
}

export function append(message) {
  view.append(rowFor(message));
  view.scrollTop = view.scrollHeight;
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
    add(bubble, 'div', 'forwarded', message.forwarded, 'forwarded');
  }
  if (message.quote) {
    const quote = add(bubble, 'div', 'quote');
    add(quote, 'div', 'author', message.quote.author, 'quote');
    add(quote, 'div', 'quoted', message.quote.text, 'quote');
  }
  const body = add(bubble, 'div', 'body');
  fillText(add(body, 'span', 'text', '', 'message'), message.text);
  add(body, 'span', 'time', message.time, 'time');
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

/** Every text of the header and the conversation in document order, with its kind and the side of its bubble. */
export function texts() {
  const found = [];
  for (const root of [document.getElementById('header'), view]) {
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
