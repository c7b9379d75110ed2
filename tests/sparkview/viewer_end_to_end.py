"""sparkview end to end: the real program on a virtual X display (Xvfb),
driven with real X pointer and key events (xdotool), as a user works:
one-to-one, "LineEdit" to "Add Line", lines drawn click by click, AutoFind
pressed, the set-up saved with Ctrl+S. Then the fitted values in that set-up
are compared with sparkrun's --lines --autofind on the same points, and a
screenshot of the viewer showing the input with the overlay is compared with
sparkrun's --overlay picture of the same state (the lines, their handles,
the red error points, the centre crosshair, the right way up).

Where the widgets are comes from the program's layout report
(SPARKVIEW_LAYOUT, LayoutReport.h): what an accessibility tool would say."""
import json
import os
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import xwdshot  # noqa: E402

BUILD = sys.argv[1] if len(sys.argv) > 1 else os.environ.get("STRAIGHTLUX_BUILD", "build/default")
SPARKRUN = os.path.join(BUILD, "sparkrun")
SPARKVIEW = os.path.join(BUILD, "sparkview")
WIDTH, HEIGHT = 480, 360
LINE_COLOUR = (78, 39, 255)  # the plug-in's lines, 16-bit (20000, 10000, 65535) in 8 bits
CROSSHAIR = (255, 255, 0)


def run(*args, **kw):
    return subprocess.run(list(args), check=True, capture_output=True, text=True, **kw)


class Session:
    def __init__(self, work):
        self.work = work
        # Xvfb picks a free display and writes its number to the pipe when ready.
        read_end, write_end = os.pipe()
        self.xvfb = subprocess.Popen(["Xvfb", "-displayfd", str(write_end), "-screen", "0",
                                      "1600x1000x24", "-nolisten", "tcp"],
                                     pass_fds=(write_end,), stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as ready:
            self.display = ":" + ready.readline().strip()
        self.env = dict(os.environ, DISPLAY=self.display,
                        SPARKVIEW_LAYOUT=os.path.join(work, "layout.json"))
        self.env.pop("QT_QPA_PLATFORM", None)
        self.view = None
        self.settled = 0

    def close(self):
        if self.view and self.view.poll() is None:
            self.view.kill()
        self.xvfb.terminate()
        self.xvfb.wait()

    def start(self, *args):
        self.view = subprocess.Popen([SPARKVIEW] + list(args), env=self.env,
                                     stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        return self.wait()

    def layout(self):
        try:
            with open(self.env["SPARKVIEW_LAYOUT"]) as f:
                return json.load(f)
        except (OSError, ValueError):
            return None

    def wait(self, settle=0.5, quiet=1.5, limit=60):
        """Waits until the program has reported a settled picture and then no
        newer one for `settle` s (or, when no new report comes, for `quiet` s:
        a request the worker took with the one before reports once)."""
        end = time.time() + limit
        seen, since, start = self.settled, time.time(), time.time()
        while time.time() < end:
            if self.view.poll() is not None:
                raise AssertionError("sparkview ended: %s" % self.view.stderr.read())
            report = self.layout()
            if report and report["settled"] != seen:
                seen, since = report["settled"], time.time()
            if report and ((seen != self.settled and time.time() - since > settle) or
                           (seen > 0 and time.time() - start > quiet and time.time() - since > settle)):
                self.settled = seen
                return report
            time.sleep(0.05)
        raise AssertionError("sparkview did not settle")

    def xdo(self, *args):
        run("xdotool", *args, env=self.env)

    def click_at(self, x, y):
        self.xdo("mousemove", str(int(x)), str(int(y)), "click", "1")

    def widget_centre(self, report, name):
        x, y, w, h = report["widgets"][name]
        return x + w // 2, y + h // 2

    def pick_entry(self, report, name, steps):
        """Opens a combo box with a click and moves `steps` entries (negative: up)."""
        self.click_at(*self.widget_centre(report, name))
        time.sleep(0.3)
        key = "Down" if steps > 0 else "Up"
        for _ in range(abs(steps)):
            self.xdo("key", key)
        self.xdo("key", "Return")
        return self.wait()


def read_ppm(path):
    with open(path, "rb") as f:
        data = f.read()
    parts = data.split(maxsplit=4)
    width, height = int(parts[1]), int(parts[2])
    pixels = parts[4]
    return width, height, [pixels[r * width * 3:(r + 1) * width * 3] for r in range(height)]


def setup_values(path):
    values = {}
    for line in open(path):
        parts = line.split()
        if len(parts) == 3:
            values["%s %s" % (parts[0], parts[1])] = parts[2]
    return values


def make_inputs(work):
    chart = os.path.join(work, "chart.png")
    distorted = os.path.join(work, "distorted.png")
    traced = os.path.join(work, "traced.json")
    run(SPARKRUN, "--make-chart", chart, "--size", "%dx%d" % (WIDTH, HEIGHT))
    run(SPARKRUN, "--set", "Mode=Add", "--set", "Radial1=0.1", chart, distorted)
    run(SPARKRUN, "--trace-chart", distorted, traced)
    # Whole pixels, as a pointer gives them; the outer lines of the grid.
    lines = json.load(open(traced))["lines"]
    picked = [lines[0], lines[3], lines[4], lines[7]]
    points = [[[round(x), round(y)] for x, y in line[::2]] for line in picked]
    lines_file = os.path.join(work, "lines.json")
    json.dump({"lines": points}, open(lines_file, "w"))
    return distorted, lines_file, points


def draw_lines(s, report, points):
    x0, y0 = report["topLeftPixel"]
    scale = report["scale"]
    for line in points:
        report = s.pick_entry(report, "LineEdit", 1)  # No Action -> Add Line: a new line
        for px, py in line:
            s.click_at(x0 + px * scale, y0 + py * scale)
        report = s.wait()
        report = s.pick_entry(report, "LineEdit", -1)  # back to No Action
    return report


def compare_overlay(s, report, reference):
    x0, y0 = [int(round(v)) for v in report["topLeftPixel"]]
    _, _, shot = xwdshot.grab(s.display)
    _, _, expected = read_ppm(reference)
    differing = 0
    line_pixels = [0, 0]
    for y in range(HEIGHT):
        got = shot[y0 + y][x0 * 3:(x0 + WIDTH) * 3]
        want = expected[y]
        for x in range(WIDTH):
            g = tuple(got[x * 3:x * 3 + 3])
            w = tuple(want[x * 3:x * 3 + 3])
            if max(abs(a - b) for a, b in zip(g, w)) > 40:
                differing += 1
            line_pixels[0] += g == LINE_COLOUR
            line_pixels[1] += w == LINE_COLOUR
    print("overlay: %d of %d pixels differ; line pixels %d on screen, %d expected"
          % (differing, WIDTH * HEIGHT, line_pixels[0], line_pixels[1]))
    assert line_pixels[1] > 500, "the expected overlay holds the lines"
    assert abs(line_pixels[0] - line_pixels[1]) < 0.05 * line_pixels[1], "lines as expected"
    assert differing < 0.01 * WIDTH * HEIGHT, "the viewer shows the expected overlay"
    # The centre crosshair's right and upper arms, 15 screen pixels out from the
    # centre: Centre X, Y = 50% is frame point (240, 180), image pixel (240, 179).
    cx, cy = x0 + 240, y0 + HEIGHT - 1 - 180
    right = tuple(shot[cy][(cx + 15) * 3:(cx + 16) * 3])
    up = tuple(shot[cy - 15][cx * 3:cx * 3 + 3])
    assert right == CROSSHAIR and up == CROSSHAIR, (right, up)


def main():
    work = tempfile.mkdtemp(prefix="sparkview-e2e-")
    distorted, lines_file, points = make_inputs(work)
    saved = os.path.join(work, "viewer.setup")
    s = Session(work)
    try:
        report = s.start("--setup", saved, "--threads", "2", distorted)
        assert report["dirty"] is False
        s.xdo("key", "f")
        report = s.wait()
        s.xdo("key", "1")
        report = s.wait()
        assert report["scale"] == 1.0, report["scale"]
        report = draw_lines(s, report, points)
        s.click_at(*s.widget_centre(report, "AutoFind"))
        report = s.wait()
        assert report["dirty"] is True, "AutoFind changed the set-up"
        s.xdo("key", "ctrl+s")
        report = s.wait()
        assert os.path.exists(saved) and report["dirty"] is False
        # The input under the overlay, as sparkrun's overlay picture shows it.
        vx, vy, vw, vh = report["widgets"]["Viewer"]
        s.click_at(vx + 5, vy + 5)  # the viewer takes the keys (a click outside the frame)
        s.xdo("key", "Tab")
        report = s.wait()
        assert report["shown"] == "input"
        reference = os.path.join(work, "reference")
        run(SPARKRUN, "--lines", lines_file, "--autofind", "--overlay", reference + "-overlay.png",
            "--save-setup", reference + ".setup", distorted, reference + ".png")
        run("oiiotool", reference + "-overlay.png", "-o", reference + "-overlay.ppm")
        got, want = setup_values(saved), setup_values(reference + ".setup")
        for key in ("Float 6", "Float 7", "Pup 23"):
            print("%s: viewer %s, sparkrun %s" % (key, got.get(key), want.get(key)))
            assert got.get(key) == want.get(key), key
        assert got["Float 6"] != "0", "AutoFind fitted Radial1"
        compare_overlay(s, report, reference + "-overlay.ppm")
        s.xdo("key", "ctrl+q")
        code = s.view.wait(timeout=30)
        assert code == 0, "sparkview ended with %d: %s" % (code, s.view.stderr.read()[-4000:])
    finally:
        s.close()
    print("1 passed, 0 failed")


if __name__ == "__main__":
    main()
