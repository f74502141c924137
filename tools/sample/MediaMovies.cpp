#include "tools/sample/MediaMovies.h"

#include "tools/sample/ImageEncoders.h"
#include "tools/sample/MediaEncoder.h"
#include "tools/sample/PictureElements.h"
#include "tools/writing/DeterministicRandom.h"

#include <algorithm>
#include <cmath>

namespace quillbook::sample {
namespace {

constexpr double fullTurn = 6.283185307179586;
constexpr int sampleRate = 44'100;

struct Note {
    double frequency = 0; ///< Hertz.
    double seconds = 0;
};

/// Soft plucked tones: three partials that fade.
std::vector<float> tune(const std::vector<Note>& notes) {
    std::vector<float> samples;
    for (const Note& note : notes) {
        const auto count = static_cast<std::size_t>(note.seconds * sampleRate);
        for (std::size_t index = 0; index < count; ++index) {
            const double time = static_cast<double>(index) / sampleRate;
            const double attack = std::min(1.0, time / 0.02);
            const double release = std::min(1.0, (note.seconds - time) / 0.03);
            const double phase = fullTurn * note.frequency * time;
            const double tone = std::sin(phase) + 0.35 * std::sin(2 * phase) + 0.12 * std::sin(3 * phase);
            samples.push_back(static_cast<float>(0.28 * attack * release * std::exp(-time * 2.2) * tone));
        }
    }
    return samples;
}

/// The scene behind the canoe; the same in every frame but for the glints, which wander with `time`.
void drawLakeScene(PictureCanvas& canvas, double time) {
    DeterministicRandom random(7, "canoe");
    canvas.verticalGradient(0, 420, {{0, colour(0x4F9BD9)}, {1, colour(0xDDF1FA)}});
    canvas.place({time * 22, 0}, 1);
    drawCloud(canvas, random, {240, 150}, 80, {1, 1, 1, 0.9});
    drawCloud(canvas, random, {820, 110}, 60, {1, 1, 1, 0.8});
    canvas.restore();
    drawRidge(canvas, random, 330, 60, 430, colour(0x86B08F));
    drawFirRow(canvas, random, 430, 90, colour(0x2F6B45));
    canvas.verticalGradient(425, 900, {{0, colour(0x9ACDE0)}, {1, colour(0x24688F)}});
    for (int glint = 0; glint < 60; ++glint) {
        const double depth = random.fraction();
        const double start = random.fraction(0, 1300);
        const double x = std::fmod(start + time * (30 + depth * 60), 1300) - 80;
        const double y = 440 + depth * depth * 440;
        canvas.line({{x, y}, {x + 20 + depth * 50, y}}, 2 + depth * 4, {1, 1, 1, 0.35});
    }
}

PictureCanvas canoeFrame(double time) {
    PictureCanvas canvas(640, 360);
    drawLakeScene(canvas, time);
    const double rock = std::sin(time * 3.1);
    canvas.place({200 + time * 180, 610 + rock * 10}, 1, rock * 0.07);
    drawRowingBoat(canvas, {0, 0}, 190, colour(0xC8553D));
    canvas.restore();
    return canvas;
}

/// Up from the jetty, in an arc, and into the water with a splash; `phase` runs from 0 to 1.
PictureCanvas bounceFrame(double phase) {
    PictureCanvas canvas(320, 240);
    canvas.rectangle(0, 0, 1200, 520, colour(0x99CCFF));
    canvas.circle({980, 150}, 80, colour(0xFFFF99));
    canvas.rectangle(0, 520, 1200, 380, colour(0x3399CC));
    canvas.rectangle(0, 480, 380, 50, colour(0x996633));
    canvas.rectangle(300, 520, 30, 160, colour(0x663300));
    const double flight = std::min(1.0, phase / 0.7);
    const Point at = {320 + flight * 400,
                      420 - std::sin(flight * fullTurn / 2) * 280 + flight * flight * 150};
    if (phase < 0.7) {
        canvas.place(at, 1, flight * fullTurn);
        canvas.circle({0, -70}, 42, colour(0xCC9966));
        canvas.roundedRectangle(-34, -36, 68, 96, 26, colour(0xFF6666));
        canvas.line({{-24, 0}, {-84, -50}}, 20, colour(0xCC9966));
        canvas.line({{24, 0}, {84, -50}}, 20, colour(0xCC9966));
        canvas.line({{-16, 56}, {-44, 112}}, 22, colour(0xCC9966));
        canvas.line({{16, 56}, {44, 112}}, 22, colour(0xCC9966));
        canvas.restore();
    } else {
        const double spread = (phase - 0.7) / 0.3;
        for (int drop = -4; drop <= 4; ++drop) {
            const double height = (1 - spread * spread) * (220 - std::abs(drop) * 30);
            canvas.circle(
                {720 + drop * (18 + spread * 46), 560 - height * std::sin(spread * fullTurn / 2 + 0.4)}, 18,
                colour(0xFFFFFF));
        }
        canvas.ellipse({720, 580}, 90 + spread * 160, 18 + spread * 18, colour(0xCCFFFF));
    }
    return canvas;
}

} // namespace

Data canoeMovie() {
    constexpr int frames = 100;
    const VideoFormat format;
    MediaEncoder encoder(format);
    const std::vector<float> sound = tune({{392.0, 0.5},
                                           {440.0, 0.5},
                                           {523.25, 0.5},
                                           {587.33, 0.5},
                                           {523.25, 0.5},
                                           {440.0, 0.5},
                                           {392.0, 1.0}});
    const std::size_t perFrame = static_cast<std::size_t>(sampleRate / format.framesPerSecond);
    for (int frame = 0; frame < frames; ++frame) {
        encoder.addFrame(canoeFrame(static_cast<double>(frame) / format.framesPerSecond));
        const std::size_t from = std::min(sound.size(), static_cast<std::size_t>(frame) * perFrame);
        const std::size_t to = std::min(sound.size(), from + perFrame);
        encoder.addSound({sound.begin() + static_cast<std::ptrdiff_t>(from),
                          sound.begin() + static_cast<std::ptrdiff_t>(to)});
    }
    return encoder.finish();
}

Data voiceNote() {
    MediaEncoder encoder(std::nullopt);
    encoder.addSound(tune({{293.66, 0.45},
                           {369.99, 0.45},
                           {440.0, 0.9},
                           {493.88, 0.45},
                           {440.0, 0.45},
                           {369.99, 0.9},
                           {329.63, 0.45},
                           {369.99, 0.45},
                           {440.0, 0.45},
                           {329.63, 0.45},
                           {293.66, 1.3}}));
    return encoder.finish();
}

Data bounceAnimation() {
    constexpr int frameCount = 18;
    std::vector<PictureCanvas> frames;
    for (int frame = 0; frame < frameCount; ++frame)
        frames.push_back(bounceFrame(static_cast<double>(frame) / frameCount));
    return encodeGIF(frames, 8);
}

} // namespace quillbook::sample
