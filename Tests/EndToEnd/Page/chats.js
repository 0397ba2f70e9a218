// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// What the chats of the page hold. A message is from "them" or "us"; a divider or a day stands apart from both.

const them = (text, time, extra) => ({ from: 'them', text, time, ...extra });
const us = (text, time, extra) => ({ from: 'us', text, time, ...extra });

// Chats of one name that begin alike: with its name as a line, the one of 7 messages has 8 lines.
function ordersChat(id, count) {
  const messages = [
    them('Two trays for Sunday please', '11:02 AM'),
    us('Two trays, noted', '11:03 AM'),
    them('Is the pickup at nine?', '11:20 AM'),
    us('Yes, at nine', '11:21 AM'),
    them('Can I pay by card?', '11:22 AM'),
    us('Of course you can', '11:23 AM'),
    them('And is there parking?', '11:25 AM'),
  ].slice(0, count);
  return { id, name: 'Orders', presence: '', last: 'Photo', when: messages[count - 1].time, messages };
}

const english = {
  direction: 'ltr',
  words: { list: 'Chat list', conversation: 'Messages', type: 'Type a message', send: 'Send', attach: 'Attach',
    forwarded: 'Forwarded' },
  chats: [
    { id: 'mariam', name: 'Mariam', presence: 'online', last: 'Great. How much with delivery?', when: '12:51 PM', unread: 2, messages: [
      { day: 'Today' },
      them('Hello, I saw the gift boxes on your page', '12:40 PM'),
      us('Welcome Mariam! Which one did you like?', '12:41 PM'),
      them('The blue one with the dates. Is it in stock?', '12:45 PM'),
      them('وهل التوصيل إلى الرفاع مجاني؟ 🙏', '12:45 PM'),
      us('Yes it is, and delivery in Riffa is free.', '12:46 PM', { quote: { author: 'Mariam', text: 'Is it in stock?' } }),
      them('Eid offer: 10% off all boxes this week 🎉', '12:48 PM', { forwarded: true }),
      them('I found it here: https://shop.example/boxes/blue', '12:48 PM'),
      us('Thank you 😊👍🏽', '12:49 PM'),
      { divider: '2 unread messages' },
      them('My address:\nRoad 12, Block 934', '12:51 PM'),
      them('Great. How much is it with delivery?', '12:51 PM'),
    ] },
    { id: 'yousef', name: 'Yousef (driver)', presence: 'typing…', last: 'Where do I park?', when: '12:30 PM', unread: 1, messages: [
      them('I am at the gate of the warehouse', '12:28 PM'),
      us('The guard will open for you', '12:29 PM'),
      them('Where do I park?', '12:30 PM'),
    ] },
    ordersChat('orders', 7),
    ordersChat('orders-half', 3),
    ordersChat('orders-less', 2),
    { id: 'bakery', name: 'Al Noor Bakery', presence: '', last: 'Your invoice is attached', when: 'Yesterday', messages: [
      them('Your invoice is attached', '9:05 AM'),
      us('Received, we pay on Sunday', '9:30 AM'),
    ] },
    { id: 'family', name: 'Family', presence: '', last: 'Lunch on Friday?', when: 'Yesterday', unread: 12, messages: [
      them('Lunch on Friday?', '8:15 PM'),
    ] },
  ],
};

const arabic = {
  direction: 'rtl',
  words: { list: 'قائمة المحادثات', conversation: 'الرسائل', type: 'اكتب رسالة', send: 'إرسال', attach: 'إرفاق',
    forwarded: 'محوّلة' },
  chats: [
    { id: 'mariam', name: 'مريم', presence: 'متصل الآن', last: 'كم السعر مع التوصيل؟', when: '١٢:٥١', unread: '٢', messages: [
      { day: 'اليوم' },
      them('السلام عليكم، شفت البوكسات في صفحتكم', '١٢:٤٠'),
      us('وعليكم السلام مريم! أي واحد عجبج؟', '١٢:٤١'),
      them('الأزرق Blue Box رقم 7، هل هو متوفر؟', '١٢:٤٥'),
      us('نعم متوفر ٣ قطع، والتوصيل إلى Riffa مجاني 🚚', '١٢:٤٦', { quote: { author: 'مريم', text: 'هل هو متوفر؟' } }),
      them('Thanks! السعر ١٢٫٥٠٠ دينار؟', '١٢:٤٨', { forwarded: true }),
      us('أكيد 😊👍🏽', '١٢:٤٩'),
      { divider: '٢ رسائل غير مقروءة' },
      them('عنواني:\nطريق ١٢، مجمع ٩٣٤', '١٢:٥١'),
      them('كم السعر مع التوصيل؟', '١٢:٥١'),
    ] },
    { id: 'yousef', name: 'يوسف (السائق)', presence: '', last: 'وين أوقف السيارة؟', when: '١٢:٣٠', unread: '١', messages: [
      them('أنا عند باب المستودع', '١٢:٢٨'),
      them('وين أوقف السيارة؟', '١٢:٣٠'),
    ] },
    { id: 'bakery', name: 'مخبز النور', presence: '', last: 'الفاتورة مرفقة', when: 'أمس', messages: [
      them('الفاتورة مرفقة', '٩:٠٥'),
    ] },
  ],
};

export const languages = { en: english, ar: arabic };

/** A chat of so many messages, no two alike. */
export function longChat(count) {
  const messages = Array.from({ length: count }, (_, i) => {
    const text = 'Message ' + (i + 1) + (i % 5 === 0 ? ' about an order that takes a little longer to tell and fills more than one line of its bubble' : '');
    return (i % 3 === 2 ? us : them)(text, (i % 12 + 1) + ':' + String(i % 60).padStart(2, '0') + ' PM');
  });
  return { id: 'long', name: 'Wholesale', presence: 'online', last: messages[count - 1].text, when: '1:00 PM', messages };
}
