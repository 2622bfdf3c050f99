// SPDX-License-Identifier: GPL-3.0-or-later
// A plain JACK client for the tests of the binding, with nothing of the binding in it.
//
//   jackpeer [--silent] CLIENT PORT...
//
// Each PORT is registered as an input and as an output port: "NAME" for both, or "IN|OUT" with
// a name for each. What comes into the first port goes out of it again, as it came, unless
// --silent. Says "ready" on standard output once its ports are there, and obeys these lines on
// standard input:
//
//   burst COUNT LENGTH   sends COUNT messages of LENGTH bytes, out of the first port; each
//                        is F0, its number in three bytes of seven bits, filling, F7; a LENGTH of
//                        3 sends control changes that carry the number
//   count                answers with the number of messages that came in since the start
//   quit                 leaves in order
#include <jack/jack.h>
#include <jack/midiport.h>

#include <atomic>
#include <cstdio>
#include <deque>
#include <iostream>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using Message = std::vector<unsigned char>;

struct Port
{
    jack_port_t *in = nullptr;
    jack_port_t *out = nullptr;
};

std::vector<Port> ports;
std::mutex mutex; // a test's peer may hold up a period
std::deque<Message> waiting;
std::atomic<int> received{0};
bool isSilent = false;

int process(jack_nframes_t frames, void *)
{
    const std::lock_guard<std::mutex> lock(mutex);
    for (std::size_t i = 0; i < ports.size(); ++i) {
        void *in = jack_port_get_buffer(ports[i].in, frames);
        void *out = jack_port_get_buffer(ports[i].out, frames);
        jack_midi_clear_buffer(out);
        if (i != 0) {
            continue;
        }
        const std::uint32_t count = jack_midi_get_event_count(in);
        for (std::uint32_t n = 0; n < count; ++n) {
            jack_midi_event_t event;
            if (jack_midi_event_get(&event, in, n) == 0) {
                ++received;
                if (!isSilent) {
                    waiting.emplace_back(event.buffer, event.buffer + event.size);
                }
            }
        }
        while (!waiting.empty() && waiting.front().size() <= jack_midi_max_event_size(out) &&
               jack_midi_event_write(out, 0, waiting.front().data(), waiting.front().size()) == 0) {
            waiting.pop_front();
        }
    }
    return 0;
}

Message numbered(int number, std::size_t length)
{
    if (length == 3) {
        return {static_cast<unsigned char>(0xB0 | ((number >> 14) & 0x0F)),
                static_cast<unsigned char>((number >> 7) & 0x7F),
                static_cast<unsigned char>(number & 0x7F)};
    }
    Message message(length, 0x55);
    message.front() = 0xF0;
    message[1] = static_cast<unsigned char>((number >> 14) & 0x7F);
    message[2] = static_cast<unsigned char>((number >> 7) & 0x7F);
    message[3] = static_cast<unsigned char>(number & 0x7F);
    message.back() = 0xF7;
    return message;
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (!arguments.empty() && arguments.front() == "--silent") {
        isSilent = true;
        arguments.erase(arguments.begin());
    }
    if (arguments.empty()) {
        return 2;
    }
    jack_client_t *client = jack_client_open(arguments.front().c_str(), JackNoStartServer, nullptr);
    if (client == nullptr) {
        return 1;
    }
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string &name = arguments[i];
        const std::size_t bar = name.find('|');
        // JACK wants a client's ports to have different names, and an a2j one has.
        const std::string in = bar == std::string::npos ? name : name.substr(0, bar);
        const std::string out = bar == std::string::npos ? name + " out" : name.substr(bar + 1);
        ports.push_back(
            {jack_port_register(client, in.c_str(), JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0),
             jack_port_register(client, out.c_str(), JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0)});
        if (ports.back().in == nullptr || ports.back().out == nullptr) {
            return 1;
        }
    }
    jack_set_process_callback(client, process, nullptr);
    if (jack_activate(client) != 0) {
        return 1;
    }
    std::cout << "ready" << std::endl;
    std::string line;
    while (std::getline(std::cin, line) && line != "quit") {
        std::istringstream words(line);
        std::string verb;
        words >> verb;
        if (verb == "burst") {
            int count = 0;
            std::size_t length = 0;
            words >> count >> length;
            const std::lock_guard<std::mutex> lock(mutex);
            for (int i = 0; i < count; ++i) {
                waiting.push_back(numbered(i, length));
            }
        } else if (verb == "count") {
            std::cout << received << std::endl;
        }
    }
    jack_client_close(client);
    return 0;
}
