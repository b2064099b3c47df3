// Draws the pictures of the page: pictures is the list of them (charts.py says what they hold).
"use strict";

const colours = ["#1f6fb2", "#c1392b", "#2e8b57", "#8e5bb5", "#d08a1e", "#3aa6a6", "#7a5c45", "#d15a9c"];
const drawn = [];
let dark = window.matchMedia("(prefers-color-scheme: dark)").matches;

// From blue to red, for series that follow one another.
function shade(k, n) {
  const share = n > 1 ? k / (n - 1) : 0;
  return `hsl(${Math.round(215 - 215 * share)}, 65%, ${dark ? 62 : 45}%)`;
}

// A band of confidence: one area along the lower bounds and back along the upper ones. It goes by the name of its
// series, and is switched off with it.
function band(one, k) {
  const colour = colours[k % colours.length];
  return {
    name: one.name, type: "custom", data: one.band, silent: true, clip: true, z: 1, tooltip: { show: false },
    encode: { x: 0, y: [1, 2] }, itemStyle: { color: colour },
    renderItem: (parameters, api) => {
      if (parameters.dataIndex > 0) return undefined;
      const low = one.band.map(([x, from]) => api.coord([x, from])), high = one.band.map(([x, , to]) => api.coord([x, to]));
      return { type: "polygon", shape: { points: low.concat(high.reverse()) }, style: { fill: colour, opacity: 0.18 } };
    },
  };
}

function series(picture) {
  const made = plainseries(picture);
  return made.concat(picture.series.flatMap((one, k) => (one.band && one.band.length ? [band(one, k)] : [])));
}

function plainseries(picture) {
  return picture.series.map((one, k) => ({
    name: one.name,
    type: picture.kind === "points" ? "scatter" : picture.kind,
    data: one.points,
    stack: picture.stacked ? "all" : undefined,
    symbolSize: picture.kind === "points" ? 5 : 6,
    showSymbol: one.points.length < 60,
    lineStyle: { width: 2, type: one.name.includes("genic") ? "dashed" : "solid" },
    itemStyle: picture.shaded ? { color: shade(k, picture.series.length), opacity: 0.75 } : { color: colours[k % colours.length] },
    emphasis: { focus: picture.series.length > 1 && !one.band ? "series" : "none" },
  }));
}

const shorter = (value) => (typeof value === "number" ? Number(value.toPrecision(4)).toString() : String(value));

function option(picture) {
  const ink = dark ? "#e3e9ef" : "#1b2733", soft = dark ? "#9fb0bf" : "#5b6b7a", line = dark ? "#2e3a46" : "#d8dfe6";
  const integers = picture.series.every((one) => one.points.every((point) => Number.isInteger(point[0])));
  const axis = (name, gap) => ({
    type: "value", name, nameLocation: "middle", nameGap: gap, scale: true, nameTextStyle: { color: soft },
    axisLabel: { color: soft, formatter: shorter }, axisLine: { show: true, lineStyle: { color: line } },
    splitLine: { lineStyle: { color: line } },
  });
  const across = { ...axis(picture.x, 28), splitLine: { show: false } };
  if (integers) across.minInterval = 1;
  if (picture.kind === "bar") {
    across.type = "category";
    across.data = [...new Set(picture.series.flatMap((one) => one.points.map((point) => String(point[0]))))];
    across.axisLabel = { color: soft };
  }
  const up = axis(picture.y, 52);
  if (picture.kind === "bar") up.scale = false;
  const made = series(picture);
  if (picture.kind === "bar") for (const one of made) one.data = one.data.map((point) => [String(point[0]), point[1]]);
  return {
    animation: false,
    aria: { enabled: true, label: { description: `${picture.title}. ${picture.text}` } },
    color: colours,
    backgroundColor: "transparent",
    textStyle: { color: ink, fontFamily: "system-ui, 'DejaVu Sans', sans-serif" },
    legend: { type: "scroll", top: 0, textStyle: { color: ink }, selected: Object.fromEntries((picture.hidden || []).map((name) => [name, false])) },
    tooltip: {
      trigger: picture.kind === "points" ? "item" : "axis",
      backgroundColor: dark ? "#26313c" : "#ffffff", borderColor: line, textStyle: { color: ink },
      formatter: (given) => {
        const all = Array.isArray(given) ? given : [given];
        const list = all.filter((one) => one.seriesIndex < picture.series.length);
        const head = `${picture.x}: ${shorter(list[0].value[0])}`;
        return [head, ...list.map((one) => `${one.marker}${one.seriesName}: <b>${shorter(one.value[1])}</b>${bounds(picture, one)}`)].join("<br>");
      },
    },
    grid: { left: 72, right: 24, top: 40, bottom: 48 },
    xAxis: across,
    yAxis: up,
    series: made,
  };
}

function bounds(picture, one) {
  const found = (picture.series[one.seriesIndex].band || []).find(([x]) => x === one.value[0]);
  return found ? ` (${shorter(found[1])} to ${shorter(found[2])})` : "";
}

// The picture's points as text, tabs between the columns.
function numbers(picture) {
  const banded = picture.series.some((one) => one.band);
  const rows = [["series", picture.x, picture.y, ...(banded ? ["lower", "upper"] : [])]];
  for (const one of picture.series) {
    const bounds = new Map((one.band || []).map(([x, low, high]) => [x, [low, high]]));
    for (const point of one.points) rows.push([one.name, ...point, ...(banded ? bounds.get(point[0]) || ["", ""] : [])]);
  }
  return rows.map((row) => row.join("\t")).join("\n") + "\n";
}

function save(picture) {
  const link = document.createElement("a");
  link.href = URL.createObjectURL(new Blob([numbers(picture)], { type: "text/tab-separated-values" }));
  link.download = `${picture.id}.tsv`;
  link.click();
  URL.revokeObjectURL(link.href);
}

function addpicture(picture) {
  const section = document.createElement("section");
  const title = document.createElement("h2");
  title.textContent = picture.title;
  const text = document.createElement("p");
  text.textContent = picture.text;
  const box = document.createElement("div");
  box.className = "picture";
  box.id = `picture-${picture.id}`;
  box.setAttribute("role", "img");
  box.setAttribute("aria-label", `${picture.title}. ${picture.text}`);
  const button = document.createElement("button");
  button.type = "button";
  button.textContent = "Save the numbers";
  button.addEventListener("click", () => save(picture));
  section.append(title, text, box, button);
  document.getElementById("pictures").append(section);
  drawn.push({ picture, box, chart: null });
}

function draw() {
  document.documentElement.classList.toggle("dark", dark);
  const button = document.getElementById("form");
  button.textContent = dark ? "Light" : "Dark";
  button.setAttribute("aria-pressed", String(dark));
  for (const one of drawn) {
    if (!one.chart) one.chart = echarts.init(one.box, null, { renderer: "svg" });
    const selected = one.chart.getOption()?.legend?.[0]?.selected;
    const options = option(one.picture);
    if (selected) options.legend.selected = selected;
    one.chart.setOption(options, true);
  }
  document.body.dataset.drawn = String(drawn.length);
}

pictures.forEach(addpicture);
draw();
document.getElementById("form").addEventListener("click", () => { dark = !dark; draw(); });
window.addEventListener("resize", () => drawn.forEach((one) => one.chart.resize()));
// On paper the form is light, and the pictures have its width.
let wasdark = dark;
window.addEventListener("beforeprint", () => { wasdark = dark; dark = false; draw(); drawn.forEach((one) => one.chart.resize({ width: 640, height: 340 })); });
window.addEventListener("afterprint", () => { dark = wasdark; draw(); drawn.forEach((one) => one.chart.resize({ width: "auto", height: "auto" })); });
