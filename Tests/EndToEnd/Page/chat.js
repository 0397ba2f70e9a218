// SPDX-FileCopyrightText: 2026 The Quillory developers
// A chat page whose message box is a rich-text editor, a plain text area ("?box=textarea") or a password field
// ("?box=password"). It tells its server what its own document holds, so that a test need not ask the browser.
import { createEditor, $getRoot, $createParagraphNode, KEY_ENTER_COMMAND, COMMAND_PRIORITY_HIGH } from 'lexical';
import { registerRichText } from '@lexical/rich-text';
import { registerHistory, createEmptyHistoryState } from '@lexical/history';

const state = { load: performance.timeOrigin, sequence: 0, text: '', sent: [], keys: [], blurs: 0, focused: false };
const kind = new URLSearchParams(location.search).get('box') ?? 'rich';

function report() {
  const place = document.getElementById('box').getBoundingClientRect();
  state.sequence += 1;
  state.focused = document.hasFocus() && document.activeElement.id === 'box';
  state.x = window.screenX + (window.outerWidth - window.innerWidth) / 2 + place.x + place.width / 2;
  state.y = window.screenY + window.outerHeight - window.innerHeight + place.y + place.height / 2;
  fetch('/report', { method: 'POST', body: JSON.stringify({ ...state, page: location.href }), keepalive: true });
}

function element(parent, className, text) {
  const made = parent.appendChild(document.createElement(className === 'text' || className === 'time' ? 'span' : 'div'));
  made.className = className;
  made.textContent = text;
  return made;
}

function addMessage(side, text, time) {
  const bubble = element(element(document.getElementById('conversation'), 'row ' + side, ''), 'bubble', '');
  element(bubble, 'text', text);
  element(bubble, 'time', time);
  document.getElementById('conversation').scrollTop = 1e6;
}

function showChats() {
  for (const name of ['Mariam', 'Al Noor Bakery', 'Yousef (driver)', 'Family', 'Sales team', 'Fatima']) {
    const chat = element(document.getElementById('chats'), 'chat', name);
    chat.appendChild(document.createElement('small')).textContent = 'Yesterday';
  }
  addMessage('them', 'Hello, I saw the gift boxes on your page', '12:40 PM');
  addMessage('us', 'Welcome Mariam! Which one did you like?', '12:41 PM');
  addMessage('them', 'The blue one with the dates. Is it in stock?', '12:45 PM');
  addMessage('them', 'وهل التوصيل إلى الرفاع مجاني؟ 🙏', '12:45 PM');
  addMessage('us', 'Yes it is, and delivery in Riffa is free.', '12:46 PM');
}

function send(clear) {
  if (state.text.trim() !== '') {
    state.sent.push(state.text);
    addMessage('us', state.text, '12:50 PM');
    clear();
  }
}

// The document's own text, its paragraphs as lines.
function editorText(editor) {
  return editor.getEditorState().read(() => $getRoot().getChildren().map((block) => block.getTextContent()).join('\n'));
}

function makeEditor(place) {
  const box = place.appendChild(document.createElement('div'));
  box.contentEditable = 'true';
  box.setAttribute('role', 'textbox');
  box.setAttribute('aria-label', 'Type a message');
  const editor = createEditor({ namespace: 'box', onError: (error) => { throw error; } });
  editor.setRootElement(box);
  registerRichText(editor);
  registerHistory(editor, createEmptyHistoryState(), 300);
  // Without a paragraph to type into, the editor takes no keys.
  const clear = () => editor.update(() => $getRoot().clear().append($createParagraphNode()));
  clear();
  editor.registerCommand(KEY_ENTER_COMMAND, (event) => {
    if (event.shiftKey) {
      return false;
    }
    event.preventDefault();
    send(clear);
    return true;
  }, COMMAND_PRIORITY_HIGH);
  editor.registerUpdateListener(() => { state.text = editorText(editor); report(); });
  return box;
}

function makeField(place, tag) {
  const box = place.appendChild(document.createElement(tag));
  if (tag === 'input') {
    box.type = 'password';
  }
  box.placeholder = 'Type a message';
  box.addEventListener('input', () => { state.text = box.value; report(); });
  box.addEventListener('keydown', (event) => {
    if (event.key === 'Enter' && !event.shiftKey) {
      event.preventDefault();
      send(() => { box.value = ''; state.text = ''; });
    }
  });
  return box;
}

showChats();
const place = document.getElementById('place');
const box = kind === 'rich' ? makeEditor(place) : makeField(place, kind === 'textarea' ? 'textarea' : 'input');
box.id = 'box';
window.addEventListener('blur', () => { state.blurs += 1; report(); });
window.addEventListener('focus', report);
window.addEventListener('resize', report);
window.addEventListener('keydown', (event) => { state.keys.push(event.key); report(); }, true);
box.addEventListener('focus', report);
box.addEventListener('blur', () => { state.blurs += 1; report(); });
// A window manager may move the window without any event.
setInterval(report, 500);
report();
