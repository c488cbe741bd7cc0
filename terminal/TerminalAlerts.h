#pragma once

#include "engine/Alerts.h"
#include "terminal/Conversation.h"

#include <vector>

namespace dubrix {

/// The engine's alerts in a terminal: their own texts, with the buttons as choices.
class TerminalAlerts final : public Alerts {
public:
    enum class Reply { Ask, Yes, No };

    explicit TerminalAlerts(Conversation& conversation) : conversation_(conversation) {}

    /// How questions with two buttons are answered, and offers, which have three: "No" presses the
    /// second of those. Whoever is to be asked and does not answer presses nothing.
    void setReplies(Reply toQuestions, Reply toOffers) {
        toQuestions_ = toQuestions;
        toOffers_ = toOffers;
    }

    void showSimpleAlertWithTitle(const Text& title, const Text& message,
                                  const std::string& okText) override;
    void show2ButtonAlertWithTitle(const Text& title, const Text& message,
                                   const std::string& okButton, const std::string& cancelButton,
                                   AlertBlock cancelBlock, AlertBlock okBlock) override;
    void show3ButtonAlertWithTitle(const Text& title, const Text& message,
                                   const std::string& firstButton, const std::string& secondButton,
                                   const std::string& cancelButton, AlertBlock firstBlock,
                                   AlertBlock secondBlock) override;
    void presentProgressAlert(const ProgressAlert& alert) override;
    void dismissProgressAlert() override {}
    Size mainViewSize() const override { return {}; }

    /// Settles what has been asked, and what is asked because of it, until nothing is open.
    void settle();

    /// Told of each work that begins, on one line.
    std::function<void(const std::string& work)> workBegins = [](const std::string&) {};

    /// Whether a question has found nobody to answer it since the last `forget`.
    bool wasUnanswered() const { return wasUnanswered_; }
    void forget() { wasUnanswered_ = false; }

private:
    struct Button {
        std::string title;
        AlertBlock block;
    };
    struct Question {
        Text title;
        Text message;
        std::vector<Button> buttons;
    };

    const Button* pressed(const Question& question);

    Conversation& conversation_;
    Reply toQuestions_ = Reply::Ask;
    Reply toOffers_ = Reply::Ask;
    std::vector<Question> open_;
    bool wasUnanswered_ = false;
};

} // namespace dubrix
