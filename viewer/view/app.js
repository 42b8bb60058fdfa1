// The demonstration around the viewer: a list of pages, zoom, the form's data as it is typed.
import '/src/viewer.js';

const [viewer, data, message] = ['viewer', 'data', 'message'].map(id => document.getElementById(id));
const names = await (await fetch('/pages.json')).json();

function showData() {
  data.replaceChildren(...[...new FormData(document.forms[0])].map(pair => {
    const row = document.createElement('tr');
    row.append(...['th', 'td'].map((kind, i) => Object.assign(document.createElement(kind), { textContent: pair[i] })));
    return row;
  }));
}

names.forEach((name, i) => {
  const button = Object.assign(document.createElement('button'), { type: 'button', textContent: name });
  button.addEventListener('click', () => viewer.pages[i].element.scrollIntoView());
  const item = document.createElement('li');
  item.append(button);
  document.getElementById('pages').append(item);
});

for (const type of ['load', 'input', 'change']) viewer.addEventListener(type, showData);
document.forms[0].addEventListener('reset', () => setTimeout(showData));
viewer.addEventListener('error', event => { message.value = event.message; });
viewer.addEventListener('signature', event => { message.value = `Signature ${event.detail.name}: ${event.detail.info}`; });
document.getElementById('zoom').addEventListener('change', event => viewer.setAttribute('zoom', event.target.value));
document.getElementById('print').addEventListener('click', () => print());
viewer.setAttribute('src', names.map((_, i) => `/page-${i + 1}.svg`).join(' '));
