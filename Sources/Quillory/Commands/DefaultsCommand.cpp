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

namespace quillory {

namespace {
enum class Type { string, boolean, integer, faqList, secret };

struct Setting {
    QString key;
    Type type;
    QString meaning;
};

std::span<const Setting> allSettings() {
    using namespace settingsKey;
    static const std::array settings{
        Setting{model, Type::string, QStringLiteral("the model to use")},
        Setting{secondModel, Type::string, QStringLiteral("the second model, when two are compared")},
        Setting{compareMode, Type::boolean, QStringLiteral("ask two models side by side")},
        Setting{tone, Type::string, QStringLiteral("Professional, Friendly, Concise or Grammar only")},
        Setting{debounceMs, Type::integer, QStringLiteral("pause in milliseconds before a suggestion")},
        Setting{minChars, Type::integer, QStringLiteral("drafts shorter than this are left alone")},
        Setting{maxChars, Type::integer, QStringLiteral("drafts longer than this are left alone")},
        Setting{enabled, Type::boolean, QStringLiteral("whether to make suggestions")},
        Setting{assistantMode, Type::boolean, QStringLiteral("suggest replies in WhatsApp")},
        Setting{businessProfile, Type::string, QStringLiteral("a description of your business")},
        Setting{faqEntries, Type::faqList, QStringLiteral("questions with \"id\", \"question\" and \"answer\"")},
        Setting{faqKnowledge, Type::string, QStringLiteral("facts as free text, used when faqEntries is empty")},
        Setting{openRouterAPIKey, Type::secret, QStringLiteral("your OpenRouter API key; never shown")},
        Setting{debugAcceptOnce, Type::boolean, QStringLiteral("accept the next suggestion automatically, once")},
    };
    return settings;
}

const Setting *settingOf(const QString &key) {
    const auto found = std::ranges::find(allSettings(), key, &Setting::key);
    return found == allSettings().end() ? nullptr : &*found;
}

QString takenBy(Type type) {
    switch (type) {
    case Type::boolean:
        return QStringLiteral("true or false");
    case Type::integer:
        return QStringLiteral("a whole number");
    case Type::faqList:
        return QStringLiteral("a JSON list");
    case Type::secret:
        return QStringLiteral("- only");
    case Type::string:
        break;
    }
    return QStringLiteral("text");
}

/// A setting as text, absent when it has no value.
std::optional<QString> shownValue(const Setting &setting, const platform::UserDefaults &store) {
    switch (setting.type) {
    case Type::boolean:
        return text::trueOrFalse(store.boolean(setting.key));
    case Type::integer:
        return QString::number(store.integer(setting.key));
    case Type::faqList: {
        const std::optional<QByteArray> json = store.data(setting.key);
        return json ? std::optional(QString::fromUtf8(*json)) : std::nullopt;
    }
    case Type::secret:
        if (!store.string(setting.key).value_or(QString()).isEmpty()) {
            return QStringLiteral("(set)");
        }
        return store.isKept(setting.key)
                   ? std::optional(QStringLiteral("(set; its password store is locked or does not answer)"))
                   : std::nullopt;
    case Type::string:
        break;
    }
    return store.string(setting.key);
}

std::optional<platform::DefaultsValue> booleanFrom(const QString &text) {
    const auto isOneOf = [&text](std::initializer_list<const char16_t *> words) {
        return std::ranges::any_of(
            words, [&text](const char16_t *word) { return text.compare(QStringView(word), Qt::CaseInsensitive) == 0; });
    };
    if (isOneOf({u"true", u"yes", u"1"})) {
        return true;
    }
    return isOneOf({u"false", u"no", u"0"}) ? std::optional<platform::DefaultsValue>(false) : std::nullopt;
}

/// The value that a text stands for; absent when it does not fit the type.
std::optional<platform::DefaultsValue> valueFrom(Type type, const QString &text) {
    switch (type) {
    case Type::boolean:
        return booleanFrom(text);
    case Type::integer: {
        bool isNumber = false;
        const qint64 number = text.toLongLong(&isNumber);
        return isNumber ? std::optional<platform::DefaultsValue>(number) : std::nullopt;
    }
    case Type::faqList: {
        const auto entries = faqEntriesFromJSON(text.toUtf8());
        return entries ? std::optional<platform::DefaultsValue>(faqEntriesToJSON(*entries)) : std::nullopt;
    }
    case Type::secret:
        return std::nullopt;
    case Type::string:
        break;
    }
    return text;
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

class Command {
  public:
    Command(const CommandSettings &settings, const CommandStreams &streams)
        : m_store(settings.values), m_keys(settings.keys), m_streams(streams) {}

    int run(const CommandArguments &given) {
        const QStringList words = given.words();
        const QString verb = words.value(0);
        const qsizetype count = words.size();
        const bool isKnown = (verb == QStringLiteral("read") && (count == 1 || count == 2)) ||
                             (verb == QStringLiteral("write") && count == 3) ||
                             (verb == QStringLiteral("delete") && count == 2);
        if (!isKnown) {
            return given.refuse();
        }
        if (count == 1) {
            return readAll();
        }
        const Setting *const setting = settingOf(words[1]);
        if (setting == nullptr) {
            return refuse(QStringLiteral("\"%1\" is not a setting; quillory --help lists them").arg(words[1]));
        }
        if (verb == QStringLiteral("read")) {
            return read(*setting);
        }
        return count == 3 ? write(*setting, words[2]) : remove(*setting);
    }

  private:
    int remove(const Setting &setting) {
        const bool isRemoved = m_store.remove(setting.key);
        if (isRemoved || setting.type != Type::secret) {
            return saved(isRemoved);
        }
        note(QStringLiteral("the key could not be deleted everywhere, so it may still be in the desktop's password "
                            "store or in the settings file; unlock the password store and try again"));
        return exitStatus::failure;
    }

    int readAll() {
        for (const Setting &setting : allSettings()) {
            QString value = shownValue(setting, m_store).value_or(QStringLiteral("(not set)"));
            // One line for each setting, even if its value has several.
            value.replace(u'\\', QStringLiteral("\\\\")).replace(u'\n', QStringLiteral("\\n"));
            say(setting.key + QStringLiteral(": ") + value);
        }
        return exitStatus::success;
    }

    int read(const Setting &setting) {
        const std::optional<QString> value = shownValue(setting, m_store);
        say(value.value_or(QStringLiteral("(not set)")));
        return value ? exitStatus::success : exitStatus::failure;
    }

    int write(const Setting &setting, const QString &argument) {
        const bool isFromInput = argument == QStringLiteral("-");
        if (setting.type == Type::secret) {
            return isFromInput ? writeKey()
                               : refuse(QStringLiteral("a key in an argument can be seen by other "
                                                       "programs; give it on standard input: quillory "
                                                       "defaults write %1 - < FILE")
                                            .arg(setting.key));
        }
        const std::optional<QString> text = isFromInput ? readValue(m_streams.input) : argument;
        const auto value = text ? valueFrom(setting.type, *text) : std::nullopt;
        if (!value) {
            return refuse(QStringLiteral("%1 takes %2").arg(setting.key, takenBy(setting.type)));
        }
        if (setting.key == settingsKey::tone && !toneFromRawValue(*text)) {
            note(QStringLiteral("unknown tone; Professional will be used"));
        }
        return saved(m_store.set(setting.key, *value));
    }

    int writeKey() {
        // Password managers print other fields on further lines.
        const QString line = readText(m_streams.input).value_or(QString()).section(u'\n', 0, 0);
        const auto [key, refusal] = enteredKey(line);
        if (!refusal.isEmpty()) {
            m_streams.errors << "quillory: " << refusal.toStdString() << '\n';
            return exitStatus::misuse;
        }
        const SavedKey result = saveKey(m_keys, key, {});
        (result.isSaved ? m_streams.output : m_streams.errors) << result.sentence.toStdString() << '\n';
        return result.isSaved ? exitStatus::success : exitStatus::failure;
    }

    int saved(bool isSaved) {
        if (!isSaved) {
            note(QStringLiteral("the settings could not be saved"));
        }
        return isSaved ? exitStatus::success : exitStatus::failure;
    }

    int refuse(const QString &sentence) {
        note(sentence);
        return exitStatus::misuse;
    }

    void say(const QString &line) { m_streams.output << line.toStdString() << '\n'; }
    void note(const QString &sentence) { m_streams.errors << "quillory: " << sentence.toStdString() << ".\n"; }

    platform::UserDefaults &m_store;
    platform::KeyStorage &m_keys;
    const CommandStreams &m_streams;
};
} // namespace

const CommandSyntax &defaultsSyntax() {
    static const CommandSyntax syntax{
        .name = QStringLiteral("defaults"),
        .forms = {{QStringLiteral("read [KEY]"), QStringLiteral("show all settings, or one of them")},
                  {QStringLiteral("write KEY VALUE"),
                   QStringLiteral("change a setting; a running Quillory uses it at once")},
                  {QStringLiteral("delete KEY"), QStringLiteral("restore the default of a setting")}},
        .options = {},
        .mostWords = 3,
        .isPlainAfterFirstWord = true}; // the text of a profile may begin with a dash
    return syntax;
}

int runDefaultsCommand(const QStringList &arguments, const CommandSettings &settings, const CommandStreams &streams) {
    const CommandArguments given(defaultsSyntax(), arguments, streams);
    if (given.status()) {
        return *given.status();
    }
    registerSettingsDefaults(settings.values);
    return Command(settings, streams).run(given);
}

QString describeSettings() {
    QString lines;
    for (const Setting &setting : allSettings()) {
        lines += QStringLiteral("  %1 %2 %3\n")
                     .arg(setting.key.leftJustified(17), takenBy(setting.type).leftJustified(14), setting.meaning);
    }
    return lines;
}

} // namespace quillory
