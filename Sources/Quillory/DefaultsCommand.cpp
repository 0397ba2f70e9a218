// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/DefaultsCommand.h"

#include "Quillory/AppSettings.h"
#include "Quillory/Text.h"

#include <QStringConverter>

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
        Setting{model, Type::string, QStringLiteral("the model that is asked")},
        Setting{secondModel, Type::string, QStringLiteral("the second model when two are compared")},
        Setting{compareMode, Type::boolean, QStringLiteral("ask two models side by side")},
        Setting{tone, Type::string, QStringLiteral("Professional, Friendly, Concise or Grammar only")},
        Setting{debounceMs, Type::integer, QStringLiteral("pause in milliseconds before a suggestion")},
        Setting{minChars, Type::integer, QStringLiteral("shorter drafts are left alone")},
        Setting{maxChars, Type::integer, QStringLiteral("longer drafts are left alone")},
        Setting{enabled, Type::boolean, QStringLiteral("make suggestions at all")},
        Setting{assistantMode, Type::boolean, QStringLiteral("suggest replies in WhatsApp")},
        Setting{businessProfile, Type::string, QStringLiteral("what your business is")},
        Setting{faqEntries, Type::faqList, QStringLiteral("questions with \"id\", \"question\" and \"answer\"")},
        Setting{faqKnowledge, Type::string, QStringLiteral("knowledge as free text, used when there are no questions")},
        Setting{openRouterAPIKey, Type::secret, QStringLiteral("your OpenRouter API key; never shown")},
        Setting{debugAcceptOnce, Type::boolean, QStringLiteral("accept the next suggestion by itself, once")},
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
        return store.string(setting.key).value_or(QString()).isEmpty() ? std::nullopt
                                                                       : std::optional(QStringLiteral("(set)"));
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

/// The value that a text stands for; absent when it is none of that type.
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
        return text.isEmpty() ? std::nullopt : std::optional<platform::DefaultsValue>(text);
    case Type::string:
        break;
    }
    return text;
}

/// What stands on standard input (of the API key, its first line), without the line break at its end. Absent when it
/// is no text or longer than any setting.
std::optional<QString> readInput(Type type, std::istream &input) {
    constexpr std::size_t longest = 1 << 20;
    std::string bytes(longest + 1, '\0');
    input.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(input.gcount()));
    if (type == Type::secret) {
        bytes.resize(std::min(bytes.find('\n'), bytes.size()));
    }
    if (bytes.ends_with('\n')) {
        bytes.pop_back();
    }
    if (bytes.ends_with('\r')) {
        bytes.pop_back();
    }
    QStringDecoder decode(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = decode(QByteArrayView(bytes));
    return decode.hasError() || bytes.size() > longest ? std::nullopt : std::optional(std::move(text));
}

class Command {
  public:
    Command(platform::UserDefaults &store, const CommandStreams &streams) : m_store(store), m_streams(streams) {}

    int run(const QStringList &arguments) {
        const QString verb = arguments.value(0);
        const qsizetype count = arguments.size();
        const bool isKnown = (verb == QStringLiteral("read") && (count == 1 || count == 2)) ||
                             (verb == QStringLiteral("write") && count == 3) ||
                             (verb == QStringLiteral("delete") && count == 2);
        if (!isKnown) {
            return refuse(QStringLiteral("say defaults read [KEY], defaults write KEY VALUE or defaults delete KEY"));
        }
        if (count == 1) {
            return readAll();
        }
        const Setting *const setting = settingOf(arguments[1]);
        if (setting == nullptr) {
            return refuse(QStringLiteral("\"%1\" is not a setting; quillory --help lists them").arg(arguments[1]));
        }
        if (verb == QStringLiteral("read")) {
            return read(*setting);
        }
        return count == 3 ? write(*setting, arguments[2]) : remove(*setting);
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
            // A line for each setting, whatever the value holds.
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
        if (setting.type == Type::secret && !isFromInput) {
            return refuse(QStringLiteral("a key in an argument can be seen by other programs; give it on standard "
                                         "input: quillory defaults write %1 - < FILE")
                              .arg(setting.key));
        }
        const std::optional<QString> text = isFromInput ? readInput(setting.type, m_streams.input) : argument;
        const auto value = text ? valueFrom(setting.type, *text) : std::nullopt;
        if (!value && setting.type == Type::secret) {
            return refuse(QStringLiteral("no key came on standard input"));
        }
        if (!value) {
            return refuse(QStringLiteral("%1 takes %2").arg(setting.key, takenBy(setting.type)));
        }
        if (setting.key == settingsKey::tone && !toneFromRawValue(*text)) {
            note(QStringLiteral("there is no such tone, so Professional will be used"));
        }
        return saved(m_store.set(setting.key, *value));
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
    const CommandStreams &m_streams;
};
} // namespace

int runDefaultsCommand(const QStringList &arguments, platform::UserDefaults &store, const CommandStreams &streams) {
    registerSettingsDefaults(store);
    return Command(store, streams).run(arguments);
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
