// How pages lie in the viewer, on a screen and in print.

export const style = new CSSStyleSheet();
style.replaceSync(`
:host { display: block; overflow: auto; scrollbar-gutter: stable; background: #e6e6e6; color: #000; }
:host([hidden]) { display: none; }
section { position: relative; margin: 0 auto; background: #fff; content-visibility: auto; }
section + section { margin-top: 12px; }
svg { position: absolute; inset: 0; width: 100%; height: 100%; overflow: hidden; isolation: isolate;
  font: 16px serif; }
[role=group]:focus-visible, section:focus { outline: none; }
g:focus-visible { outline: 2px solid #06c; }
tspan { unicode-bidi: isolate; }
.value { display: none; }
.layer { position: absolute; inset: 0; pointer-events: none; }
.target { position: absolute; width: 1px; height: 1px; outline: none; }
input, select, textarea { position: absolute; box-sizing: border-box; margin: 0; padding: 0; border: 0;
  min-width: 0; min-height: 0; border-radius: 0; background: transparent; appearance: none; resize: none;
  overflow: hidden; pointer-events: auto; text-overflow: clip; opacity: 1; }
input:is(:hover, :focus), select:is(:hover, :focus), textarea:is(:hover, :focus) { background: rgb(0 102 204 / .08); }
input:focus-visible, select:focus-visible, textarea:focus-visible { outline: 2px solid #06c; outline-offset: 1px; }
option { color: initial; font: 16px sans-serif; }
@media print {
  :host { overflow: visible; background: none; }
  section { content-visibility: visible; break-inside: avoid;
    width: min(100%, (100vh - var(--above, 0px)) * var(--ratio)) !important; }
  section + section { break-before: page; margin-top: 0; }
  .layer { display: none; }
  .value:not(.stale) { display: inline; }
}`);
