#ifndef TOLVAR_VARUNDO_TESTS_UNITMODEL_H
#define TOLVAR_VARUNDO_TESTS_UNITMODEL_H

#include "ModelOverlay.h"
#include "ModelReceiver.h"
#include "ModelTables.h"
#include "Step.h"

#include <array>
#include <string>

namespace Tolvar::Varundo::Model {

/// A unit as the protocol reference describes it, in plain rules: no event loop, no signals, no header of the
/// library. It says what comes back for each step, what the host is told, and how the overlay looks then.
class UnitModel final : private FrameListener
{
public:
    /// A model that is wrong on purpose, for the test of whatever looks for disagreements.
    enum class Flaw : std::uint8_t { None, StatusLine3UnderUtf16 };

    explicit UnitModel(Flaw flaw = Flaw::None);

    void apply(const Step& step);
    /// Of the latest step.
    [[nodiscard]] const Bytes& replies() const { return m_replies; }
    [[nodiscard]] const std::vector<std::string>& told() const { return m_told; }

    [[nodiscard]] const std::vector<Element>& elements() const { return m_overlay.elements(); }
    [[nodiscard]] int cursorColumn() const { return m_cursorColumn; }
    [[nodiscard]] int cursorRow() const { return m_cursorRow; }
    [[nodiscard]] const Colors& lineColors() const { return m_lineColors; }
    [[nodiscard]] int codec() const { return m_codec; }
    [[nodiscard]] Interface interface() const { return m_interface; }
    [[nodiscard]] const ModelReceiver& receiver() const { return m_receiver; }
    [[nodiscard]] long framesAccepted() const { return m_framesAccepted; }

    /// Where the replies of the latest step have four bytes that are an inclination in percent. Its last bits
    /// are the unit's arithmetic.
    [[nodiscard]] const std::vector<std::size_t>& percentages() const { return m_percentages; }

private:
    struct ItemState
    {
        int format = 0;
        bool shown = false;
        int column = 0;
        int row = 0;
        Colors colors;
        float value = 0.0F;
    };
    struct StatusLine
    {
        std::u16string text;
        bool shown = false;
        Colors colors;
    };

    // FrameListener
    void accepted(const Frame& frame) override;
    void rejected() override;
    void typed(std::uint8_t character) override; ///< UnitModelTexts.cpp

    // what the host and the devices do: UnitModel.cpp
    void startFormats();
    void loadProfile(int variant);
    void bind();
    void read(Reading reading, const std::array<double, 4>& numbers);
    void editElement(const Step& step);
    void selectInterface(Interface interface);
    void tell(const std::string& what) { m_told.push_back(what); }

    // UnitModelCommands.cpp
    void execute(int command);
    void write(int command, const Bytes& payload);
    bool writePosition(int command, const Bytes& payload);
    void writeStatusLineColors(const Bytes& payload);
    void writeElementColors(const Bytes& payload);
    void writeMeasurement(int command, const Bytes& payload);
    void tellDate(const Bytes& payload);
    void tellTime(const Bytes& payload);

    // UnitModelTexts.cpp
    void writeStatusLine(const Bytes& payload);
    void writeFreeText(const Bytes& payload);
    void writeLine(const Bytes& payload);
    void writeAtCursor(const std::u16string& text);

    // how a change reaches the overlay: UnitModelChanges.cpp
    void show(Item item, bool shown);
    void showStatusLine(std::size_t line, bool shown);
    void setFormat(Item item, int format);
    void setColors(Item item, const Colors& colors);
    void setValue(Item item, float value);
    void setPressure(Item item, float value);

    // UnitModelAnswers.cpp
    void answer(int command, const Bytes& payload);
    [[nodiscard]] bool answerItem(int command);
    void answerLine(int command, int line);
    void answerOther(int command, const Bytes& payload);
    void reply(int command, const Bytes& payload);

    [[nodiscard]] ItemState& state(Item item) { return m_items[static_cast<std::size_t>(item)]; }

    Flaw m_flaw;
    ModelReceiver m_receiver;
    ModelOverlay m_overlay;
    Bytes m_replies;
    std::vector<std::string> m_told;
    std::vector<std::size_t> m_percentages;
    long m_framesAccepted = 0;

    Interface m_interface = Interface::Tcp;
    std::array<ItemState, Items.size()> m_items;
    std::array<StatusLine, 4> m_statusLines;
    std::vector<std::u16string> m_freeText;
    Colors m_lineColors{White, Blue};
    int m_codec = 0;
    int m_cursorColumn = 0;
    int m_cursorRow = 0;
    bool m_typingGoesOn = false;
    bool m_cursorIsWatched = true; ///< not without a profile once there was one

    bool m_hasReel = true;
    bool m_hasCamera = true;
    bool m_hasPositionSensor = true;
    std::array<float, 3> m_distances{};
    std::array<double, 2> m_laser{};
    std::array<double, 3> m_position{};
    float m_angle = 0.0F;
    std::array<int, 4> m_clock = ClockAtStart;
};

} // namespace Tolvar::Varundo::Model

#endif
