// How a gallery looks: on paper, on a phone, in the light and in the dark.
#pragma once

namespace tool {

inline constexpr char kGalleryStyle[] = R"css(
:root {
  color-scheme: light dark;
  --paper: #fbfaf7; --raised: #ffffff; --ink: #1f2328; --quiet: #565d66; --line: #d9d6ce;
  --accent: #0b5cad; --bad: #a8201a; --check: #d5d5d5; --check-back: #ffffff;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #15171a; --raised: #1d2024; --ink: #e6e4df; --quiet: #a6abb2; --line: #363b42;
    --accent: #82bcf7; --bad: #ff9f95; --check: #4a4f56; --check-back: #33373c;
  }
}
* { box-sizing: border-box; }
html { -webkit-text-size-adjust: 100%; text-size-adjust: 100%; scroll-padding-top: 1rem; }
body {
  margin: 0 auto; max-width: 78rem; padding: 2.5rem clamp(1rem, 4vw, 2.5rem) 4rem;
  background: var(--paper); color: var(--ink);
  font: 1rem/1.55 system-ui, -apple-system, "Segoe UI", "Noto Sans", "DejaVu Sans", sans-serif;
}
h1, h2, h3 { line-height: 1.2; font-weight: 600; text-wrap: balance; overflow-wrap: anywhere; }
h1 { margin: 0 0 .5rem; font-size: clamp(1.7rem, 5vw, 2.3rem); letter-spacing: -.015em; }
h2 { margin: 4.5rem 0 .5rem; padding-top: 1rem; border-top: 1px solid var(--line); font-size: 1.55rem; }
h3 { margin: 2.75rem 0 .5rem; font-size: 1.15rem; }
p { max-width: 44rem; margin: .5rem 0; overflow-wrap: anywhere; }
a { color: var(--accent); text-decoration-thickness: 1px; text-underline-offset: .18em; }
a:focus-visible { outline: 2px solid var(--accent); outline-offset: 3px; border-radius: 2px; }
code { font: .86em/1.5 ui-monospace, "SF Mono", Menlo, Consolas, "DejaVu Sans Mono", monospace; }
.lead { color: var(--quiet); }
nav { margin: 2rem 0; }
nav ul { margin: 0; padding: 0; list-style: none; }
nav > ul > li { padding: .6rem 0; border-top: 1px solid var(--line); }
nav > ul > li:last-child { border-bottom: 1px solid var(--line); }
nav > ul > li > a { font-weight: 600; overflow-wrap: anywhere; }
nav ul ul { display: flex; flex-wrap: wrap; gap: .1rem 1.2rem; }
dl { display: grid; gap: 1rem 2.5rem; margin: 1rem 0; grid-template-columns: repeat(auto-fit, minmax(min(100%, 26rem), 1fr)); }
dt { font-weight: 600; }
dd { margin: 0; }
.grid { display: grid; gap: 2rem 1.5rem; margin: 1.25rem 0; align-items: start; }
.wholes { grid-template-columns: repeat(auto-fill, minmax(min(100%, 21rem), 1fr)); }
.details { grid-template-columns: repeat(auto-fill, minmax(min(100%, 15rem), 1fr)); }
.small { grid-template-columns: repeat(auto-fill, minmax(min(100%, 12.5rem), 1fr)); }
.plots { grid-template-columns: repeat(auto-fill, minmax(min(100%, 34rem), 1fr)); }
.pairs { grid-template-columns: repeat(auto-fill, minmax(min(100%, 26rem), 1fr)); }
figure { margin: 0; min-width: 0; }
.shown { display: flex; flex-direction: column; align-items: flex-start; gap: .5rem; }
.shown .row { display: flex; gap: .5rem; max-width: 100%; }
.shown .row img { min-width: 0; box-shadow: 0 0 0 1px var(--line); }
.plots .shown { display: grid; gap: .5rem 1rem; grid-template-columns: repeat(auto-fit, minmax(min(100%, 16rem), 1fr)); }
img { display: block; max-width: 100%; height: auto; }
img.magnified { image-rendering: pixelated; }
img.clear {
  background: repeating-conic-gradient(var(--check) 0 25%, var(--check-back) 0 50%) 0 0 / 16px 16px;
  print-color-adjust: exact; -webkit-print-color-adjust: exact;
}
figcaption { margin-top: .6rem; font-size: .875rem; line-height: 1.45; overflow-wrap: anywhere; }
figcaption > * { display: block; }
figcaption strong { font-weight: 600; font-size: .95rem; }
figcaption .call { margin: .1rem 0; user-select: all; -webkit-user-select: all; }
figcaption .fact { color: var(--quiet); }
figcaption .hash { user-select: all; -webkit-user-select: all; }
.failed .shown {
  padding: .75rem 1rem; border-left: 3px solid var(--bad); background: var(--raised); color: var(--bad);
}
.failed .shown p { margin: 0; font-size: .9rem; }
svg.plot { display: block; width: 100%; height: auto; color: var(--ink); overflow: visible; }
svg.plot text { fill: currentColor; font-size: 12px; }
svg.plot .label { text-anchor: middle; fill: var(--quiet); }
svg.plot .tick-x { text-anchor: middle; }
svg.plot .tick-y { text-anchor: end; }
svg.plot path { fill: none; stroke: currentColor; }
svg.plot .grid { stroke: var(--line); }
svg.plot .axis { stroke: var(--quiet); }
svg.plot .mark { stroke: var(--quiet); stroke-dasharray: 4 3; }
svg.plot .curve { stroke-width: 1.4; stroke-linejoin: round; }
svg.plot .dots { stroke: var(--accent); stroke-width: 4; stroke-linecap: round; }
footer { margin-top: 4rem; padding-top: 1rem; border-top: 1px solid var(--line); }
@media (max-width: 30rem) {
  .small { grid-template-columns: 1fr 1fr; gap: 1.5rem 1rem; }
  .small img { width: 128px; }
  .small figcaption { font-size: .8rem; }
}
@media print {
  :root {
    color-scheme: light; --paper: #ffffff; --raised: #ffffff; --ink: #000000; --quiet: #444444; --line: #bbbbbb;
    --accent: #0b5cad; --bad: #a8201a; --check: #d5d5d5; --check-back: #ffffff;
  }
  body { max-width: none; padding: 0; font-size: 10pt; }
  figure { break-inside: avoid; }
  h2, h3 { break-after: avoid; }
  a { color: inherit; text-decoration: none; }
  .wholes { grid-template-columns: repeat(3, 1fr); }
  .details { grid-template-columns: repeat(3, 1fr); }
  .small { grid-template-columns: repeat(4, 1fr); }
  .plots, .pairs { grid-template-columns: 1fr; }
}
)css";

}  // namespace tool
