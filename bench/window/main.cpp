#include "bench/window/WindowBench.h"

#include <QGuiApplication>
#include <QQuickStyle>
#include <cstdio>
#include <exception>
#include <string_view>

// quillbook-window-bench export|plain

int main(int count, char** words) {
    QGuiApplication application(count, words);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    const std::string_view work = count == 2 ? words[1] : "";
    try {
        if (work == "export") return quillbook::bench::runExport();
        if (work == "plain") return quillbook::bench::runPlainWindow();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "quillbook-window-bench: %s\n", error.what());
        return 1;
    }
    std::fputs("usage: quillbook-window-bench export|plain\n", stderr);
    return 2;
}
