// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The chats of the page. A message is from "them" or "us"; days and dividers are from nobody.

const them = (text, time, extra) => ({ from: 'them', text, time, ...extra });
const us = (text, time, extra) => ({ from: 'us', text, time, ...extra });

const english = {
  direction: 'ltr',
  words: { list: 'Chat list', conversation: 'Messages', type: 'Type a message', send: 'Send', attach: 'Attach' },
  chats: [
    { id: 'mariam', name: 'Mariam', presence: 'online', last: 'Great. How much with delivery?', when: '12:51 PM', messages: [
      { day: 'Today' },
      them('Hello, I saw the gift boxes on your page', '12:40 PM'),
      us('Welcome Mariam! Which one did you like?', '12:41 PM'),
      them('The blue one with the dates. Is it in stock?', '12:45 PM'),
      them('وهل التوصيل إلى الرفاع مجاني؟ 🙏', '12:45 PM'),
      us('Yes it is, and delivery in Riffa is free.', '12:46 PM', { quote: { author: 'Mariam', text: 'Is it in stock?' } }),
      them('Eid offer: 10% off all boxes this week 🎉', '12:48 PM', { forwarded: 'Forwarded' }),
      them('I found it here: https://shop.example/boxes/blue', '12:48 PM'),
      us('Thank you 😊👍🏽', '12:49 PM'),
      { divider: '2 unread messages' },
      them('My address:\nRoad 12, Block 934', '12:51 PM'),
      them('Great. How much is it with delivery?', '12:51 PM'),
    ] },
    { id: 'bakery', name: 'Al Noor Bakery', presence: '', last: 'Your invoice is attached', when: 'Yesterday', messages: [
      them('Your invoice is attached', '9:05 AM'),
      us('Received, we pay on Sunday', '9:30 AM'),
    ] },
  ],
};

const arabic = {
  direction: 'rtl',
  words: { list: 'قائمة المحادثات', conversation: 'الرسائل', type: 'اكتب رسالة', send: 'إرسال', attach: 'إرفاق' },
  chats: [
    { id: 'mariam', name: 'مريم', presence: 'متصل الآن', last: 'كم السعر مع التوصيل؟', when: '١٢:٥١', messages: [
      { day: 'اليوم' },
      them('السلام عليكم، شفت البوكسات في صفحتكم', '١٢:٤٠'),
      us('وعليكم السلام مريم! أي واحد عجبج؟', '١٢:٤١'),
      them('الأزرق Blue Box رقم 7، هل هو متوفر؟', '١٢:٤٥'),
      us('نعم متوفر ٣ قطع، والتوصيل إلى Riffa مجاني 🚚', '١٢:٤٦', { quote: { author: 'مريم', text: 'هل هو متوفر؟' } }),
      them('Thanks! السعر ١٢٫٥٠٠ دينار؟', '١٢:٤٨', { forwarded: 'محوّلة' }),
      us('أكيد 😊👍🏽', '١٢:٤٩'),
      { divider: '٢ رسائل غير مقروءة' },
      them('عنواني:\nطريق ١٢، مجمع ٩٣٤', '١٢:٥١'),
      them('كم السعر مع التوصيل؟', '١٢:٥١'),
    ] },
  ],
};

export const languages = { en: english, ar: arabic };
