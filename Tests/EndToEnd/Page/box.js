// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The message box: a rich-text editor, a plain text area or a password field. Each tells its text whenever it changes.
import { createEditor, $getRoot, $createParagraphNode, KEY_ENTER_COMMAND, COMMAND_PRIORITY_HIGH } from 'lexical';
import { registerRichText } from '@lexical/rich-text';
import { registerHistory, createEmptyHistoryState } from '@lexical/history';

const place = document.getElementById('place');

/** Puts a new box in the place of the present one. */
export function makeBox(kind, label, changed, send) {
  place.textContent = '';
  const box = kind === 'rich' ? makeEditor(label, changed, send)
    : makeField(kind === 'textarea' ? 'textarea' : 'input', label, changed);
  box.id = 'box';
  return box;
}

// The document's own text, its paragraphs as lines.
function editorText(editor) {
  return editor.getEditorState().read(() => $getRoot().getChildren().map((block) => block.getTextContent()).join('\n'));
}

function makeEditor(label, changed, send) {
  const box = place.appendChild(document.createElement('div'));
  box.contentEditable = 'true';
  box.setAttribute('role', 'textbox');
  box.setAttribute('aria-label', label);
  const editor = createEditor({ namespace: 'box', onError: (error) => { throw error; } });
  editor.setRootElement(box);
  registerRichText(editor);
  registerHistory(editor, createEmptyHistoryState(), 300);
  // Without a paragraph to type into, the editor takes no keys.
  const clear = () => editor.update(() => { $getRoot().clear().append($createParagraphNode()); });
  clear();
  editor.registerCommand(KEY_ENTER_COMMAND, (event) => {
    if (event.shiftKey) {
      return false;
    }
    event.preventDefault();
    send(editorText(editor));
    clear();
    return true;
  }, COMMAND_PRIORITY_HIGH);
  editor.registerUpdateListener(() => changed(editorText(editor)));
  return box;
}

function makeField(tag, label, changed) {
  const box = place.appendChild(document.createElement(tag));
  if (tag === 'input') {
    box.type = 'password';
  }
  box.placeholder = label;
  box.addEventListener('input', () => changed(box.value));
  return box;
}
