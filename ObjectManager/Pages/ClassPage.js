'use strict';

(() => {
  // Where a page may not use the clipboard, as one that came over plain HTTP, it can still copy what
  // is selected.
  const copySelected = (text) => {
    const area = document.createElement('textarea');
    area.value = text;
    area.readOnly = true;
    document.body.append(area);
    area.select();
    const done = document.execCommand('copy');
    area.remove();
    return done;
  };

  const copy = async (text) => {
    try {
      await navigator.clipboard.writeText(text);
      return true;
    } catch {
      return copySelected(text);
    }
  };

  // What is copied may be a part of what is shown, or several parts: a program with its set-up.
  const textOf = (element) => {
    const parts = (element.dataset.of || '').split(' ').map((id) => document.getElementById(id));
    return parts.every(Boolean) ? parts.map((each) => each.textContent).join('\n') : element.textContent;
  };

  for (const element of document.querySelectorAll('[data-copy]')) {
    const button = document.createElement('button');
    button.type = 'button';
    const label = element.dataset.label || 'Copy';
    button.textContent = label;
    button.setAttribute('aria-label', `Copy ${element.dataset.copy}`);
    button.addEventListener('click', async () => {
      const done = await copy(textOf(element));
      button.textContent = done ? 'Copied' : 'Not copied';
      button.focus();
      setTimeout(() => { button.textContent = label; }, 2000);
    });
    element.after(button);
  }

  // What an address leads to is not hidden.
  const showTarget = () => {
    const target = document.querySelector(':target');
    for (let each = target; each; each = each.parentElement) {
      if (each.localName === 'details') each.open = true;
    }
    if (target) target.scrollIntoView();
  };
  window.addEventListener('hashchange', showTarget);
  if (location.hash !== '') showTarget();
})();
