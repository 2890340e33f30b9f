#pragma once

#include "platform/MessageBoxes.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <vector>

namespace korvalin {

/// Records what is shown and gives the answers laid out before, then Ok or No. A test must have looked at
/// every box: one that it did not take from `Shown` fails it at the end.
class FakeMessageBoxes : public MessageBoxes {
  public:
    struct Box {
        std::string Text, Title;
        MessageIcon Icon;
        MessageButtons Buttons;
    };
    std::deque<Box> Shown;
    std::deque<MessageAnswer> Answers;
    std::vector<std::string> Waiting;
    bool WaitingOpen = false;
    /// Runs while a message is shown.
    std::function<void()> OnShow = [] {};
    /// Answers in place of `Answers`.
    std::function<MessageAnswer(const std::string& text, const std::string& title, MessageIcon icon,
                                MessageButtons buttons)>
        AnswersBy = {};

    ~FakeMessageBoxes() override {
        for (const Box& box : Shown)
            ADD_FAILURE() << "a message that the test did not announce: " << box.Text;
    }

    MessageAnswer Show(const std::string& text, const std::string& title, MessageIcon icon,
                       MessageButtons buttons) override {
        Shown.push_back({text, title, icon, buttons});
        OnShow();
        if (AnswersBy) return AnswersBy(text, title, icon, buttons);
        if (buttons == MessageButtons::Ok) return MessageAnswer::Ok;
        if (Answers.empty()) return MessageAnswer::No;
        const MessageAnswer answer = Answers.front();
        Answers.pop_front();
        return answer;
    }
    void ShowWaiting(const std::string& text, const std::string&) override {
        Waiting.push_back(text);
        WaitingOpen = true;
    }
    void CloseWaiting() override { WaitingOpen = false; }

    /// The oldest box not yet taken; an empty one, and a failure, when there is none.
    Box Take() {
        if (Shown.empty()) {
            ADD_FAILURE() << "no message was shown";
            return {};
        }
        Box box = Shown.front();
        Shown.pop_front();
        return box;
    }
};

} // namespace korvalin
