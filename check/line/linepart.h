#pragma once

#include "check/line/linereader.h"

#include <QHash>

#include <algorithm>
#include <functional>
#include <utility>

/// The objects, PGNs or CAN-IDs of a line, read when they are first asked for, and who of them uses a variable first.
template <class Subject>
class LinePart
{
public:
    /// Who uses a variable.
    struct User
    {
        const Subject &subject;
        size_t part; ///< place of the subindex or signal in the subject
    };

    LinePart(ObjectDataBase &store, quint8 line)
        : store_(store)
        , line_(line)
    {
    }

    std::vector<Subject> &all()
    {
        if (!all_) {
            all_ = LineReader::all<Subject>(store_, line_);
            isInOrder_ = std::ranges::adjacent_find(*all_, std::greater_equal(), placeOf) == all_->end();
        }
        return *all_;
    }

    Subject *find(quint64 key)
    {
        const auto it = std::ranges::lower_bound(all(), Subject::place(key), {}, placeOf);
        return it != all_->end() && it->key() == key ? &*it : nullptr;
    }

    std::optional<User> firstUserOf(const QString &variable)
    {
        if (!users_) {
            users_.emplace();
            for (size_t place = 0; place < all().size(); ++place)
                for (const Use &use : variablesOf((*all_)[place])) {
                    if (!users_->contains(use.variable))
                        users_->insert(use.variable, {place, use.part});
                }
        }
        const auto first = users_->constFind(variable);
        return first != users_->cend() ? std::optional<User>({(*all_)[first->first], first->second}) : std::nullopt;
    }

    /// Reads again what was written. Sets `all` of the changes where it does not know what that was.
    void update(WriteLog::Changes &changes)
    {
        if (!all_)
            return;
        // One that stands twice in its table, as in a file of another tool, cannot be read alone.
        changes.all = changes.all || !isInOrder_;
        if (changes.all) {
            all_.reset();
            forgetVariables();
            return;
        }
        for (const quint64 key : std::as_const(changes.keys))
            updateOne(key);
    }

    void forgetVariables()
    {
        users_.reset();
        ++variableChanges_;
    }
    /// Counts how often somebody may have got another variable.
    quint64 variableChanges() const { return variableChanges_; }

private:
    static quint64 placeOf(const Subject &subject) { return Subject::place(subject.key()); }

    void updateOne(quint64 key)
    {
        const auto place = std::ranges::lower_bound(*all_, Subject::place(key), {}, placeOf);
        const bool isKnown = place != all_->end() && place->key() == key;
        std::optional<Subject> now = LineReader::one<Subject>(store_, line_, key);
        if ((isKnown ? variablesOf(*place) : Variables()) != (now ? variablesOf(*now) : Variables()))
            forgetVariables();
        if (now && isKnown) {
            *place = std::move(*now);
            return;
        }
        users_.reset(); // the places of others may move
        if (now)
            all_->insert(place, std::move(*now));
        else if (isKnown)
            all_->erase(place);
    }

    /// A part of a subject that uses a variable. Where a part goes, another one may come into its place and have the
    /// same variable, so that the place alone does not tell which one it is.
    struct Use
    {
        size_t part;
        quint32 number;
        QString variable;

        friend bool operator==(const Use &, const Use &) = default;
    };
    using Variables = std::vector<Use>;

    Variables variablesOf(const Subject &subject) const
    {
        Variables variables;
        for (size_t part = 0; part < subject.parts().size(); ++part) {
            const auto &user = subject.parts()[part];
            if (QString name = user.variable(line_); !name.isEmpty())
                variables.push_back({part, user.number(), std::move(name)});
        }
        return variables;
    }

    ObjectDataBase &store_;
    quint8 line_;
    std::optional<std::vector<Subject>> all_;
    bool isInOrder_ = true;
    std::optional<QHash<QString, std::pair<size_t, size_t>>> users_; ///< place of the subject, and of its part
    quint64 variableChanges_ = 0;
};
