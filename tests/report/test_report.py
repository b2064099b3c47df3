"""Reports in a real browser: every picture drawn, values on hovering, switches, the dark form, paper."""

import base64
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "python/tests"))
from conftest import BIN, copied, example  # noqa: E402, F401

webdriver = pytest.importorskip("selenium.webdriver")
from selenium.webdriver.chrome.service import Service  # noqa: E402
from selenium.webdriver.common.by import By  # noqa: E402
from selenium.webdriver.support.ui import WebDriverWait  # noqa: E402


@pytest.fixture(scope="module")
def browser():
    options = webdriver.ChromeOptions()
    for argument in ["--headless=new", "--no-sandbox", "--disable-gpu", "--window-size=1300,1000"]:
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    driver = webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)
    yield driver
    driver.quit()


def made(folder, output):
    done = subprocess.run([ROOT / "scripts/report", folder, "-o", output], capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    return output


PICTURES = {"sizes", "contributions", "sites", "spectrum", "linkage", "qtn", "trend", "variances", "accuracy",
            "inbreeding", "structure"}


@pytest.mark.parametrize("name, more", [
    ("twotraits", set()), ("optimalcontributions", set()), ("editinganddrive", {"editing", "drives"}),
])
def test_every_picture_is_drawn(example, browser, tmp_path, name, more):  # noqa: F811
    page = made(example(name), tmp_path / "report.html")
    assert page.stat().st_size < 3e6
    text = page.read_text()
    assert "Apache License 2.0" in text and "@" + "DATA@" not in text
    browser.get(page.as_uri())
    assert browser.title == f"Report of {name}" == browser.find_element(By.TAG_NAME, "h1").text
    boxes = {box.get_attribute("id").removeprefix("picture-"): box for box in browser.find_elements(By.CLASS_NAME, "picture")}
    assert set(boxes) == PICTURES | more
    for box in boxes.values():
        # As many points, bars or lines as the picture has series at least; a text that says what it shows.
        assert len(box.find_elements(By.CSS_SELECTOR, "svg path")) > 10
        assert len(box.get_attribute("aria-label")) > 40
    assert browser.get_log("browser") == []


def test_the_page_answers_its_reader(example, browser, tmp_path):  # noqa: F811
    page = made(example("twotraits"), tmp_path / "report.html")
    browser.get(page.as_uri())
    trend = "drawn.find((one) => one.picture.id === 'trend')"
    tip = browser.execute_script(
        f"const one = {trend}; one.chart.dispatchAction({{type: 'showTip', seriesIndex: 0, dataIndex: 5}}); return one.box.innerText;"
    )
    table = subprocess.run([ROOT / "scripts/account", example("twotraits"), "--tsv"], capture_output=True, text=True).stdout
    rows = [line.split("\t") for line in table.splitlines()]
    last = [float(row[3]) for row in rows[1:] if row[0] == "6" and row[2] == "NormalUnrestr"]
    for value in last:
        assert f"{value:.4g}" in tip.replace("−", "-")
    # A series is switched off by its name, and stays so in the other form.
    switched = f"const one = {trend}; one.chart.dispatchAction({{type: 'legendToggleSelect', name: 'trait 2'}});" \
               "return one.chart.getOption().legend[0].selected['trait 2'];"
    assert browser.execute_script(switched) is False
    light = browser.find_element(By.TAG_NAME, "body").value_of_css_property("background-color")
    browser.find_element(By.ID, "form").click()
    assert browser.find_element(By.TAG_NAME, "body").value_of_css_property("background-color") != light
    assert browser.execute_script(f"return {trend}.chart.getOption().legend[0].selected['trait 2'];") is False
    # What is saved are the numbers of the picture.
    saved = browser.execute_script("return numbers(pictures.find((one) => one.id === 'trend'));").splitlines()
    assert saved[0].split("\t") == ["series", "generation", "mean true breeding value"]
    assert f"trait 1\t6\t{last[0]:.6g}" in saved
    paper = base64.b64decode(browser.print_page())
    assert paper.startswith(b"%PDF") and len(paper) > 50000
    assert browser.get_log("browser") == []


def test_a_folder_without_a_finished_run_is_refused(copied, tmp_path):  # noqa: F811
    folder = copied("twotraits")
    values = folder / "SimulatedData/GeneticMeansPerGeneration.txt"
    values.write_text(values.read_text()[:-10])
    done = subprocess.run([ROOT / "scripts/report", folder], capture_output=True, text=True)
    assert done.returncode == 2 and "is cut" in done.stderr
    assert not (folder / "report.html").exists()


def test_a_study_has_bands_and_a_table_of_differences(browser, tmp_path):
    folder = tmp_path / "ofmine"
    shutil.copytree(ROOT / "examples/study", folder)
    done = subprocess.run([ROOT / "scripts/report", folder], capture_output=True, text=True)
    assert done.returncode == 2 and "scripts/study makes it" in done.stderr
    (folder / "study/results").mkdir(parents=True)
    rows = ["scenario\tgeneration\ttrait\tstatistic\tmean\tstandard_error\treplicates\tlower\tupper"]
    for place, name in enumerate(["phenotypes", "genomic"]):
        rows += [f"{name}\t{g}\t1\tmean\t{g * (place + 1) / 4}\t0.1\t5\t{g * (place + 1) / 4 - 0.25}\t{g * (place + 1) / 4 + 0.25}" for g in range(1, 7)]
    rows += [f"genomic - phenotypes\t{g}\t1\tmean\t{g / 4}\t0.05\t5\t{g / 4 - 0.125}\t{g / 4 + 0.125}" for g in range(1, 7)]
    (folder / "study/results/summary.tsv").write_text("\n".join(rows) + "\n")
    browser.get(made(folder, folder / "report.html").as_uri())
    cells = [cell.text for cell in browser.find_elements(By.CSS_SELECTOR, "table.numbers td")]
    assert cells == ["genomic - phenotypes: Genetic trend, trait 1", "6", "1.5", "0.05", "1.38", "1.62", "5"]
    tip = browser.execute_script(
        "const one = drawn[0]; one.chart.dispatchAction({type: 'showTip', seriesIndex: 0, dataIndex: 5}); return one.box.innerText;")
    assert "phenotypes: 1.5 (1.25 to 1.75)" in tip and "genomic: 3 (2.75 to 3.25)" in tip
    # The band goes along the lower bounds and back along the upper ones.
    corners = browser.execute_script("""
        const chart = drawn[0].chart, number = /-?[0-9.]+/g;
        const bands = [...drawn[0].box.querySelectorAll("svg path")].filter((path) => path.getAttribute("fill-opacity") === "0.18" || path.getAttribute("opacity") === "0.18");
        const pixels = (x, y) => chart.convertToPixel({xAxisIndex: 0, yAxisIndex: 0}, [x, y]);
        return [bands.map((path) => path.getAttribute("d").match(number).map(Number)), pixels(1, 0), pixels(6, 1.25), pixels(6, 1.75), pixels(1, 0.5)];""")
    drawn, first, low, high, last = corners
    assert len(drawn) == 2
    assert drawn[0][:2] == pytest.approx(first, abs=0.6) and drawn[0][10:12] == pytest.approx(low, abs=0.6)
    assert drawn[0][12:14] == pytest.approx(high, abs=0.6) and drawn[0][22:24] == pytest.approx(last, abs=0.6)
    # A name switches its band off too.
    paths = "return drawn[0].box.querySelectorAll('svg path').length;"
    before = browser.execute_script(paths)
    browser.execute_script("drawn[0].chart.dispatchAction({type: 'legendToggleSelect', name: 'genomic'});")
    # It fades out first.
    WebDriverWait(browser, 10).until(lambda shown: shown.execute_script(paths) < before)
    assert browser.execute_script("return numbers(pictures[0]);").splitlines()[6] == "phenotypes\t6\t1.5\t1.25\t1.75"
    assert browser.get_log("browser") == []
