#include "app/console/console.h"

#include "app/console/process_switches.h"
#include "app/console/text_width.h"
#include "platform/console_io.h"
#include "platform/process.h"

namespace zvp {

namespace {

std::string_view ansi_sequence(char color) {
    switch (color) {
    case 'B': return "\x1b[94m";
    case 'G': return "\x1b[92m";
    case 'T': return "\x1b[96m";
    case 'R': return "\x1b[91m";
    case 'P': return "\x1b[95m";
    case 'Y': return "\x1b[93m";
    case 'b': return "\x1b[34m";
    case 'g': return "\x1b[32m";
    case 't': return "\x1b[36m";
    case 'r': return "\x1b[31m";
    case 'p': return "\x1b[35m";
    case 'y': return "\x1b[33m";
    default: return "\x1b[0m";
    }
}

/// The colour that the last sequence set; sequences that change nothing aren't written.
char current_color = 'w';

} // namespace

bool colors_shown() { return process_switches().colors_enabled && platform::output_is_terminal(); }

void set_color(char color) {
    if (color == ' ') return;
    if (ansi_sequence(color) == ansi_sequence('w')) color = 'w';
    if (color == current_color || !colors_shown()) return;
    current_color = color;
    platform::write_output(ansi_sequence(color));
}

void reset_color() { set_color('w'); }

void set_title(std::string_view text) {
    if (!colors_shown() || !platform::output_ready()) return;
    platform::write_output("\x1b]0;" + std::string(text) + "\a");
}

void print(std::string_view text, char color) {
    set_color(color);
    platform::write_output(text);
}

void print_line(std::string_view text, char color) { print(std::string(text) + "\n", color); }

void print_labelc(std::string_view label, std::string_view value, char color) {
    print(std::string(label) + ": ");
    print(value, color);
}

void print_labelm(std::size_t width, std::string_view label, std::string_view value, char color) {
    print(fit_left(label, width == 0 ? 0 : width - 1) + (width == 0 ? "" : " "));
    print(value, color);
    if (color != ' ') set_color('w');
}

void print_labelm_line(std::size_t width, std::string_view label, std::string_view value, char color) {
    print_labelm(width, label, value, color);
    print_line();
}

void print_warning(std::string_view text) {
    print_line();
    print_line(text, 'R');
    set_color('w');
}

namespace {

bool ended = false;           // an empty line was answered for an end of the input that is final
bool last_line_ended = false; // the last line was an end of the input, final or not

} // namespace

bool input_has_ended() { return last_line_ended; }

std::string read_line(char color) {
    set_color(color);
    std::string line;
    for (;;) {
        const platform::LineStatus status = platform::read_line(line);
        if (status == platform::LineStatus::too_long) {
            print_line("Input line is too long. Please enter at most " + std::to_string(platform::max_line_bytes)
                           + " characters.",
                       'R');
            set_color(color == ' ' ? 'w' : color);
            continue;
        }
        last_line_ended = status == platform::LineStatus::end_of_input;
        if (last_line_ended && !platform::input_goes_on()) {
            if (ended) fatal_stop("The input has ended, but an answer is needed. Stopping.");
            ended = true;
        }
        if (last_line_ended && !ended) print_line();
        if (status == platform::LineStatus::failed)
            fatal_stop("The input can't be read, but an answer is needed. Stopping.");
        break;
    }
    while (!line.empty() && static_cast<unsigned char>(line.back()) < 32) line.pop_back();
    return line;
}

bool pause(char color) {
    if (process_switches().pause_mode < -1) return false;
    if (!platform::input_is_terminal() || !platform::output_is_terminal()) return false;
    set_color(color);
    return platform::wait_for_key();
}

void fatal_stop() {
    reset_color();
    if (process_switches().pause_on_fatal_exit) pause();
    platform::end_process(1);
}

void fatal_stop(std::string_view text) {
    print_line();
    print_line(text, 'R');
    set_color('w');
    fatal_stop();
}

} // namespace zvp
