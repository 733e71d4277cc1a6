// Elements. Texts only ever become text nodes: whatever a module wrote stays text.

function make(tag, attributes, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes || {})) {
    if (typeof value === 'function') element.addEventListener(name, value);
    else if (value !== null && value !== undefined && value !== false) element.setAttribute(name, value);
  }
  element.append(...children.flat(Infinity).filter(child => child !== null && child !== undefined && child !== ''));
  return element;
}

const foreign = value => make('bdi', null, visible(value));
const fact = (name, ...values) => make('p', {class: 'quiet'}, `${name}: `, values);

function mark(verdict) {
  const symbol = (LOOKS[verdict] || {symbol: '?'}).symbol;
  return [make('span', {'aria-hidden': 'true'}, `${symbol} `), visible(verdict)];
}
const badge = verdict => make('span', {class: `verdict ${look(verdict)}`}, mark(verdict));

function tell(text) {
  document.getElementById('told').textContent = text;
}

async function copy(button, text) {
  try {
    await navigator.clipboard.writeText(text);
    button.textContent = 'Copied';
    tell('The command is copied.');
    setTimeout(() => { button.textContent = 'Copy'; }, 2000);
  } catch {
    getSelection().selectAllChildren(button.previousElementSibling);
    tell('The command is selected.');
  }
}

const STEP = {elements: 30, milliseconds: 16};

/** Returns a function that fills an element, the first screen at once and the rest in steps, so that nobody waits. */
function filler(parent) {
  let timer;
  return (entries, toElement) => {
    clearTimeout(timer);
    let done = 0;
    const step = () => {
      parent.append(...entries.slice(done, done += STEP.elements).map(toElement));
      if (done < entries.length) timer = setTimeout(step, STEP.milliseconds);
    };
    parent.replaceChildren();
    step();
  };
}

function section(id, title, ...content) {
  return make('section', {'aria-labelledby': id}, make('h2', {id}, title), content);
}

