// A `Dialogs` for tests: records every message, answers questions and pickers from a script.
#pragma once

#include "screens/dialogs.hpp"

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace varo::testing {

struct ShownMessage {
    std::string title;
    std::string text;
    screens::Icon icon;
};

class ScriptedDialogs : public screens::Dialogs {
public:
    std::vector<ShownMessage> messages;
    std::vector<std::string> questions;
    std::deque<bool> answers;              // next answers to askYesNo; No when empty
    std::deque<std::string> pickedFiles;   // next answers to the file pickers; cancel when empty
    std::vector<std::string> startFolders; // the folder each picker was asked to open on
    // Called as each message is shown, while the box would still be open.
    std::function<void(const ShownMessage&)> onMessage;

    void message(std::string_view title, std::string_view text, screens::Icon icon) override {
        messages.push_back({std::string(title), std::string(text), icon});
        if (onMessage) {
            onMessage(messages.back());
        }
    }
    bool askYesNo(std::string_view, std::string_view text, screens::Icon) override {
        questions.emplace_back(text);
        if (answers.empty()) {
            return false;
        }
        const bool answer = answers.front();
        answers.pop_front();
        return answer;
    }
    std::optional<std::string> pickOpenFile(std::string_view, std::string_view start) override {
        return nextFile(start);
    }
    std::optional<std::string> pickSaveFile(std::string_view, std::string_view start,
                                            std::string_view) override {
        return nextFile(start);
    }
    std::optional<std::string> pickFolder(std::string_view start) override {
        return nextFile(start);
    }

    // Texts of the "Error Message" boxes, in order.
    std::vector<std::string> errors() const {
        std::vector<std::string> texts;
        for (const auto& shown : messages) {
            if (shown.title == screens::ErrorTitle) {
                texts.push_back(shown.text);
            }
        }
        return texts;
    }
    std::string lastText() const { return messages.empty() ? std::string() : messages.back().text; }

private:
    std::optional<std::string> nextFile(std::string_view start) {
        startFolders.emplace_back(start);
        if (pickedFiles.empty()) {
            return std::nullopt;
        }
        std::string path = pickedFiles.front();
        pickedFiles.pop_front();
        return path;
    }
};

} // namespace varo::testing
