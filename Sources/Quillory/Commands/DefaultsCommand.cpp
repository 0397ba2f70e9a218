// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/DefaultsCommand.h"

#include "Quillory/Settings/ApiKey.h"
#include "Quillory/Settings/AppSettings.h"
#include "Quillory/Text.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <span>

using namespace Qt::StringLiterals;

namespace quillory {

namespace {
using Value = std::optional<platform::DefaultsValue>;

/// How the values of a setting are shown and written.
struct Type {
    QString taken;
    /// A value as text; absent when there is none.
    std::optional<QString> (*shown)(const platform::UserDefaults &store, const QString &key);
    /// The value that a text stands for; absent when it does not fit the type.
    Value (*parsed)(const QString &text);
};

const Type string{u"text"_s, [](const auto &store, const auto &key) { return store.string(key); },
                  [](const QString &text) { return Value(text); }};

const Type boolean{
    u"true or false"_s,
    [](const auto &store, const auto &key) { return std::optional(text::trueOrFalse(store.boolean(key))); },
    [](const QString &text) {
        const bool isTrue = QStringList{u"true"_s, u"yes"_s, u"1"_s}.contains(text, Qt::CaseInsensitive);
        const bool isFalse = QStringList{u"false"_s, u"no"_s, u"0"_s}.contains(text, Qt::CaseInsensitive);
        return isTrue || isFalse ? Value(isTrue) : Value();
    }};

const Type integer{
    u"a whole number"_s,
    [](const auto &store, const auto &key) { return std::optional(QString::number(store.integer(key))); },
    [](const QString &text) {
        bool isNumber = false;
        const qint64 number = text.toLongLong(&isNumber);
        return isNumber ? Value(number) : Value();
    }};

const Type faqList{u"a JSON list"_s,
                   [](const auto &store, const auto &key) {
                       const std::optional<QByteArray> json = store.data(key);
                       return json ? std::optional(QString::fromUtf8(*json)) : std::nullopt;
                   },
                   [](const QString &text) {
                       const auto entries = faqEntriesFromJSON(text.toUtf8());
                       return entries ? Value(faqEntriesToJSON(*entries)) : Value();
                   }};

const Type secret{u"- only"_s,
                  [](const auto &store, const auto &key) {
                      if (!store.string(key).value_or(QString()).isEmpty()) {
                          return std::optional(u"(set)"_s);
                      }
                      return store.isKept(key)
                                 ? std::optional(u"(set; its password store is locked or does not answer)"_s)
                                 : std::nullopt;
                  },
                  [](const QString & /*text*/) { return Value(); }};

struct Setting {
    QString key;
    const Type &type;
    QString meaning;
    [[nodiscard]] bool isSecret() const { return &type == &secret; }
};

std::span<const Setting> allSettings() {
    using namespace settingsKey;
    static const std::array settings{
        Setting{model, string, u"the model to use"_s},
        Setting{secondModel, string, u"the second model, when two are compared"_s},
        Setting{compareMode, boolean, u"ask two models side by side"_s},
        Setting{tone, string, u"Professional, Friendly, Concise or Grammar only"_s},
        Setting{debounceMs, integer, u"pause in milliseconds before a suggestion"_s},
        Setting{minChars, integer, u"drafts shorter than this are left alone"_s},
        Setting{maxChars, integer, u"drafts longer than this are left alone"_s},
        Setting{enabled, boolean, u"whether to make suggestions"_s},
        Setting{assistantMode, boolean, u"suggest replies in WhatsApp"_s},
        Setting{businessProfile, string, u"a description of your business"_s},
        Setting{faqEntries, faqList, u"questions with \"id\", \"question\" and \"answer\""_s},
        Setting{faqKnowledge, string, u"facts as free text, used when faqEntries is empty"_s},
        Setting{openRouterAPIKey, secret, u"your OpenRouter API key; never shown"_s},
        Setting{debugAcceptOnce, boolean, u"accept the next suggestion automatically, once"_s},
    };
    return settings;
}

const Setting *settingOf(const QString &key) {
    const auto found = std::ranges::find(allSettings(), key, &Setting::key);
    return found == allSettings().end() ? nullptr : &*found;
}

/// Standard input without the line break at its end.
std::optional<QString> readValue(std::istream &input) {
    std::optional<QString> text = readText(input);
    if (text && text->endsWith(u'\n')) {
        text->chop(1);
    }
    if (text && text->endsWith(u'\r')) {
        text->chop(1);
    }
    return text;
}

class Defaults {
  public:
    Defaults(const ModelAccess &access, const CommandStreams &streams)
        : m_store(access.settings.store()), m_keys(access.keys), m_streams(streams) {}

    int run(const CommandArguments &given) {
        const QStringList words = given.words();
        const QString verb = words.value(0);
        const qsizetype count = words.size();
        const bool isKnown = (verb == u"read"_s && (count == 1 || count == 2)) || (verb == u"write"_s && count == 3) ||
                             (verb == u"delete"_s && count == 2);
        if (!isKnown) {
            return given.refuse();
        }
        if (count == 1) {
            return readAll();
        }
        const Setting *const setting = settingOf(words[1]);
        if (setting == nullptr) {
            return refuse(u"\"%1\" is not a setting; quillory --help lists them"_s.arg(words[1]));
        }
        if (verb == u"read"_s) {
            return read(*setting);
        }
        return count == 3 ? write(*setting, words[2]) : remove(*setting);
    }

  private:
    int remove(const Setting &setting) {
        const bool isRemoved = m_store.remove(setting.key);
        if (isRemoved || !setting.isSecret()) {
            return saved(isRemoved);
        }
        return complain(m_streams,
                        u"the key could not be deleted everywhere, so it may still be in the desktop's password "
                        "store or in the settings file; unlock the password store and try again"_s,
                        exitStatus::failure);
    }

    int readAll() {
        for (const Setting &setting : allSettings()) {
            QString value = setting.type.shown(m_store, setting.key).value_or(u"(not set)"_s);
            // One line for each setting, even if its value has several.
            value.replace(u'\\', u"\\\\"_s).replace(u'\n', u"\\n"_s);
            say(setting.key + u": "_s + value);
        }
        return exitStatus::success;
    }

    int read(const Setting &setting) {
        const std::optional<QString> value = setting.type.shown(m_store, setting.key);
        say(value.value_or(u"(not set)"_s));
        return value ? exitStatus::success : exitStatus::failure;
    }

    int write(const Setting &setting, const QString &argument) {
        const bool isFromInput = argument == u"-"_s;
        if (setting.isSecret()) {
            return isFromInput ? writeKey()
                               : refuse(u"a key in an argument can be seen by other "
                                        "programs; give it on standard input: quillory "
                                        "defaults write %1 - < FILE"_s.arg(setting.key));
        }
        const std::optional<QString> text = isFromInput ? readValue(m_streams.input) : argument;
        const auto value = text ? setting.type.parsed(*text) : std::nullopt;
        if (!value) {
            return refuse(u"%1 takes %2"_s.arg(setting.key, setting.type.taken));
        }
        if (setting.key == settingsKey::tone && !toneFromRawValue(*text)) {
            complain(m_streams, u"unknown tone; Professional will be used"_s, exitStatus::success);
        }
        return saved(m_store.set(setting.key, *value));
    }

    int writeKey() {
        // Password managers print other fields on further lines.
        const QString line = readText(m_streams.input).value_or(QString()).section(u'\n', 0, 0);
        const auto [key, refusal] = enteredKey(line);
        if (!refusal.isEmpty()) {
            return refuse(refusal.chopped(1));
        }
        const SavedKey result = saveKey(m_keys, key, {});
        (result.isSaved ? m_streams.output : m_streams.errors) << result.sentence.toStdString() << '\n';
        return result.isSaved ? exitStatus::success : exitStatus::failure;
    }

    int saved(bool isSaved) {
        return isSaved ? exitStatus::success
                       : complain(m_streams, u"the settings could not be saved"_s, exitStatus::failure);
    }

    int refuse(const QString &sentence) { return complain(m_streams, sentence, exitStatus::misuse); }
    void say(const QString &line) { m_streams.output << line.toStdString() << '\n'; }

    platform::UserDefaults &m_store;
    platform::KeyStorage &m_keys;
    const CommandStreams &m_streams;
};
} // namespace

const Command &defaultsCommand() {
    static const Command command{
        .name = u"defaults"_s,
        .forms = {{u"read [KEY]"_s, u"show all settings, or one of them"_s},
                  {u"write KEY VALUE"_s, u"change a setting; a running Quillory uses it at once"_s},
                  {u"delete KEY"_s, u"restore the default of a setting"_s}},
        .options = {},
        .mostWords = 3,
        .isPlainAfterFirstWord = true, // the text of a profile may begin with a dash
        .run = [](const CommandArguments &given, const CommandServices &services, const CommandStreams &streams) {
            return Defaults(*services.accessModel(), streams).run(given);
        }};
    return command;
}

QString describeSettings() {
    QString lines;
    for (const Setting &setting : allSettings()) {
        lines +=
            u"  %1 %2 %3\n"_s.arg(setting.key.leftJustified(17), setting.type.taken.leftJustified(14), setting.meaning);
    }
    return lines;
}

} // namespace quillory
