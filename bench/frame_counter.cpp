// Counts, from outside, what a program's windows cost the X server: frames per window (damage
// events, each cleared at once, so one count is one burst of drawing), and the time from exec until
// a number of its windows are on screen. Works for any X client, so the same figures are taken of
// peers. Not linked with Qt on purpose: it must not disturb what it measures.
//
//   frame_counter frames SELECTOR SECONDS       per-window frames per second
//   frame_counter mapped N SELECTOR -- CMD...   ms from exec of CMD until N windows of SELECTOR are viewable
// SELECTOR: pid:N, class:NAME (WM_CLASS), or child (the CMD's own process).
#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

xcb_connection_t* c;
xcb_window_t root;

xcb_atom_t atom(const char* name)
{
    auto* r = xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, strlen(name), name), nullptr);
    const xcb_atom_t a = r ? r->atom : XCB_NONE;
    free(r);
    return a;
}

std::string property(xcb_window_t w, xcb_atom_t prop, xcb_atom_t type)
{
    auto* r = xcb_get_property_reply(c, xcb_get_property(c, 0, w, prop, type, 0, 256), nullptr);
    std::string value;
    if (r && r->type != XCB_NONE)
        value.assign(static_cast<const char*>(xcb_get_property_value(r)), xcb_get_property_value_length(r));
    free(r);
    return value;
}

struct Selector {
    long pid = -1;
    std::string cls;
};

Selector parse(const std::string& s)
{
    Selector sel;
    if (s.rfind("pid:", 0) == 0)
        sel.pid = std::atol(s.c_str() + 4);
    else if (s.rfind("class:", 0) == 0)
        sel.cls = s.substr(6);
    return sel;
}

bool matches(xcb_window_t w, const Selector& sel)
{
    static const xcb_atom_t pidAtom = atom("_NET_WM_PID");
    if (sel.pid >= 0) {
        const std::string v = property(w, pidAtom, XCB_ATOM_CARDINAL);
        return v.size() == 4 && *reinterpret_cast<const uint32_t*>(v.data()) == uint32_t(sel.pid);
    }
    const std::string v = property(w, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING);
    return v.find(sel.cls) != std::string::npos;
}

// Client windows sit right under the root, or one or two levels down inside a manager's frame.
void collect(xcb_window_t w, int depth, const Selector& sel, std::vector<xcb_window_t>& out)
{
    auto* r = xcb_query_tree_reply(c, xcb_query_tree(c, w), nullptr);
    if (!r)
        return;
    const xcb_window_t* kids = xcb_query_tree_children(r);
    for (int i = 0; i < xcb_query_tree_children_length(r); ++i) {
        if (matches(kids[i], sel))
            out.push_back(kids[i]);
        else if (depth < 2)
            collect(kids[i], depth + 1, sel, out);
    }
    free(r);
}

bool viewable(xcb_window_t w)
{
    auto* r = xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, w), nullptr);
    const bool yes = r && r->map_state == XCB_MAP_STATE_VIEWABLE;
    free(r);
    return yes;
}

int frames(const Selector& sel, double seconds)
{
    const auto* ext = xcb_get_extension_data(c, &xcb_damage_id);
    if (!ext || !ext->present) {
        std::fprintf(stderr, "frame_counter: no DAMAGE extension\n");
        return 1;
    }
    free(xcb_damage_query_version_reply(c, xcb_damage_query_version(c, 1, 1), nullptr));
    std::vector<xcb_window_t> windows;
    collect(root, 0, sel, windows);
    std::map<uint32_t, xcb_window_t> damageOf;
    std::map<xcb_window_t, long> count;
    for (xcb_window_t w : windows) {
        if (!viewable(w))
            continue;
        const xcb_damage_damage_t d = xcb_generate_id(c);
        xcb_damage_create(c, d, w, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
        damageOf[d] = w;
        count[w] = 0;
    }
    // The server reports a new damage object's whole window as damaged at once: that is no frame
    // of the program's, so it is taken (after a round trip) and cleared before counting starts.
    free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
    while (xcb_generic_event_t* e = xcb_poll_for_event(c))
        free(e);
    for (const auto& [d, w] : damageOf)
        xcb_damage_subtract(c, d, XCB_NONE, XCB_NONE);
    xcb_flush(c);
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (std::chrono::steady_clock::now() < end) {
        while (xcb_generic_event_t* e = xcb_poll_for_event(c)) {
            if ((e->response_type & 0x7f) == ext->first_event + XCB_DAMAGE_NOTIFY) {
                auto* n = reinterpret_cast<xcb_damage_notify_event_t*>(e);
                if (damageOf.count(n->damage)) {
                    ++count[damageOf[n->damage]];
                    xcb_damage_subtract(c, n->damage, XCB_NONE, XCB_NONE);
                }
            }
            free(e);
        }
        xcb_flush(c);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    for (const auto& [w, n] : count) {
        auto* g = xcb_get_geometry_reply(c, xcb_get_geometry(c, w), nullptr);
        const std::string name = property(w, XCB_ATOM_WM_NAME, XCB_ATOM_STRING);
        std::printf("%-36s %4dx%-4d %6.1f\n", name.empty() ? "(no name)" : name.c_str(), g ? g->width : 0,
                    g ? g->height : 0, n / seconds);
        free(g);
    }
    return 0;
}

int mapped(int wanted, const std::string& selText, char** cmd)
{
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        // The command outlives this tool; it must not hold the caller's output open.
        std::freopen("/dev/null", "w", stdout);
        std::freopen("/dev/null", "w", stderr);
        execvp(cmd[0], cmd);
        _exit(127);
    }
    const Selector sel = selText == "child" ? Selector{child, {}} : parse(selText);
    for (;;) {
        std::vector<xcb_window_t> windows;
        collect(root, 0, sel, windows);
        int shown = 0;
        for (xcb_window_t w : windows)
            shown += viewable(w);
        const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
        if (shown >= wanted) {
            std::printf("%.1f\n", ms);
            return 0;
        }
        if (ms > 20000) {
            std::fprintf(stderr, "frame_counter: %d of %d windows after 20 s\n", shown, wanted);
            return 1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

} // namespace

int main(int argc, char** argv)
{
    c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c)) {
        std::fprintf(stderr, "frame_counter: cannot open the display\n");
        return 1;
    }
    root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "frames" && argc == 4)
        return frames(parse(argv[2]), std::atof(argv[3]));
    if (mode == "mapped" && argc > 5 && std::string(argv[4]) == "--")
        return mapped(std::atoi(argv[2]), argv[3], argv + 5);
    std::fprintf(stderr, "usage: frame_counter frames SELECTOR SECONDS | mapped N SELECTOR -- CMD...\n");
    return 2;
}
